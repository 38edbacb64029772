#pragma once

#include "base/Scheduler.h"
#include "ports/StatusItem.h"
#include "ui/kit/WindowSurroundings.h"

#include <QRect>
#include <vector>

namespace vorli::ui {

/// Opens the menu beside `item`, the status item's rectangle, for trays whose panel cannot draw it. The
/// chosen row's action runs on the main loop after the menu has closed. The menu deletes itself.
void showStatusMenu(Scheduler& scheduler, std::vector<ports::MenuRow> rows, const QRect& item,
                    Appearance appearance, Compositing compositing);

}  // namespace vorli::ui

#pragma once

#include "base/Scheduler.h"
#include "ports/StatusItem.h"
#include "ui/WindowSurroundings.h"

#include <QRect>
#include <vector>

namespace vorli::ui {

/// Opens the menu beside `item`, the status item's rectangle, where no panel can draw it. The chosen row's
/// action runs from the main loop after the menu has closed; the menu goes by itself.
void showStatusMenu(Scheduler& scheduler, std::vector<ports::MenuRow> rows, const QRect& item,
                    Appearance appearance, Compositing compositing);

}  // namespace vorli::ui

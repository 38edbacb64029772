#pragma once

#include "base/Scheduler.h"
#include "ports/StatusItem.h"
#include "ui/WindowPalette.h"

#include <QRect>
#include <vector>

namespace vorli::ui {

/// What lies behind a window that is not rectangular.
enum class Compositing { absent, present };

/// Opens the menu beside `item`, the status item's rectangle, where no panel can draw it. The chosen row's
/// action runs from the main loop after the menu has closed; the menu goes by itself.
void showStatusMenu(Scheduler& scheduler, std::vector<ports::MenuRow> rows, const QRect& item,
                    Appearance appearance, Compositing compositing);

}  // namespace vorli::ui

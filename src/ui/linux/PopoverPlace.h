#pragma once

#include "ui/linux/ClickAnchor.h"
#include "ui/popover/PopoverScene.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <optional>

namespace vorli::ui {

/// Where the card hangs: the middle of its fixed edge, and which edge that is. Logical pixels.
struct PopoverPlace {
  PopoverScene::Edge edge = PopoverScene::Edge::top;
  int left = 0;  // of the card
  int y = 0;     // of the first row of the card, or of the row below its last one

  bool operator==(const PopoverPlace&) const = default;
};

/// Beside the panel that holds the icon, centred at the icon as far as the screen allows: below it in the
/// upper half of a screen, above it in the lower half. Without a click, at the upper right of the first
/// screen. `panel` is the panel's window, where it is known. Empty without a screen.
std::optional<PopoverPlace> popoverPlace(const std::optional<ClickAnchor>& click,
                                         const std::optional<QRect>& panel,
                                         const QList<ScreenPlace>& screens);

}  // namespace vorli::ui

#pragma once

#include "ui/popover/PopoverScene.h"
#include "ui/status/ClickAnchor.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <optional>

namespace vorli::ui {

/// Position of the card: which of its edges is fixed, and where that edge lies. Logical pixels.
struct PopoverPlace {
  PopoverScene::Edge edge = PopoverScene::Edge::top;
  int left = 0;  // of the card
  int y = 0;     // the first row of the card, or the row below its last one

  bool operator==(const PopoverPlace&) const = default;
};

/// Places the card beside the panel that holds the icon, centred at the icon as far as the screen allows:
/// below the panel in the upper half of a screen, above it in the lower half. Without a click, the card is at
/// the upper right of the first screen. `panel` is the panel's window, if it is known. Returns empty without
/// a screen.
std::optional<PopoverPlace> popoverPlace(const std::optional<ClickAnchor>& click,
                                         const std::optional<QRect>& panel,
                                         const QList<ScreenPlace>& screens);

}  // namespace vorli::ui

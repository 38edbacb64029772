#include "ui/popover/PopoverPlace.h"

#include "ui/popover/PopoverLayout.h"

#include <algorithm>

namespace vorli::ui {
namespace {

using Edge = PopoverScene::Edge;

constexpr int cardWidth = static_cast<int>(PopoverMetrics::width);
constexpr int fromTheSide = 4;  // least distance from the screen's sides
constexpr int fromThePanel = 6;

const ScreenPlace* screenOf(QPoint point, const QList<ScreenPlace>& screens) {
  for (const auto& screen : screens) {
    if (screen.geometry.contains(point)) return &screen;
  }
  return nullptr;
}

// Keeps the card within the screen. On a screen that is narrower than the card, the left side is visible.
int withinScreen(int left, const QRect& screen) {
  const int last = screen.left() + screen.width() - cardWidth - fromTheSide;
  return std::max(screen.left() + fromTheSide, std::min(left, last));
}

PopoverPlace besideUprightPanel(const QRect& icon, const QRect& panel, const QRect& screen, Edge edge) {
  const bool isLeft = panel.center().x() < screen.center().x();
  const int left = isLeft ? panel.right() + 1 + fromThePanel : panel.left() - fromThePanel - cardWidth;
  const int y = edge == Edge::top ? std::max(icon.top(), screen.top() + fromTheSide)
                                  : std::min(icon.bottom() + 1, screen.bottom() + 1 - fromTheSide);
  return {edge, left, y};
}

}  // namespace

std::optional<PopoverPlace> popoverPlace(const std::optional<ClickAnchor>& click,
                                         const std::optional<QRect>& panel,
                                         const QList<ScreenPlace>& screens) {
  if (screens.isEmpty()) return std::nullopt;
  const ScreenPlace* screen = click ? screenOf(click->point, screens) : nullptr;
  if (!screen) {
    const QRect& free = screens.front().available;
    return PopoverPlace{Edge::top, withinScreen(free.right() + 1 - cardWidth, free),
                        free.top() + fromThePanel};
  }
  const QRect& whole = screen->geometry;
  const Edge edge = click->point.y() < whole.center().y() ? Edge::top : Edge::bottom;
  if (panel && panel->height() > panel->width()) return besideUprightPanel(click->icon, *panel, whole, edge);
  const int left = withinScreen(click->point.x() - cardWidth / 2, whole);
  if (edge == Edge::top) {
    const int panelEnd = panel ? panel->bottom() + 1 : click->icon.bottom() + 1;
    return PopoverPlace{edge, left, std::max(panelEnd, screen->available.top()) + fromThePanel};
  }
  const int panelStart = panel ? panel->top() : click->icon.top();
  return PopoverPlace{edge, left, std::min(panelStart, screen->available.bottom() + 1) - fromThePanel};
}

}  // namespace vorli::ui

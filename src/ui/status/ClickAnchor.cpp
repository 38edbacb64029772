#include "ui/status/ClickAnchor.h"

#include <algorithm>

namespace vorli::ui {
namespace {

constexpr int usualPanelThickness = 32;
constexpr int thickestPanel = 96;

// Returns the thickness of the space that is kept free at the screen edge near the point.
int panelThickness(QPoint point, const ScreenPlace& screen) {
  const QRect& whole = screen.geometry;
  const QRect& free = screen.available;
  if (point.y() < free.top()) return free.top() - whole.top();
  if (point.y() > free.bottom()) return whole.bottom() - free.bottom();
  if (point.x() < free.left()) return free.left() - whole.left();
  if (point.x() > free.right()) return whole.right() - free.right();
  return usualPanelThickness;  // with two monitors, desktops often report no panel
}

}  // namespace

std::optional<QPoint> logicalPoint(QPoint native, const QList<ScreenPlace>& screens) {
  for (const auto& screen : screens) {
    const QPoint origin = screen.geometry.topLeft();
    // Floating point until the point is known to lie on the screen: a panel may report any two integers.
    const QPointF offset = (QPointF(native) - QPointF(origin)) / screen.pixelRatio;
    const bool isHere = offset.x() >= 0.0 && offset.y() >= 0.0 && offset.x() < screen.geometry.width() &&
                        offset.y() < screen.geometry.height();
    if (!isHere) continue;
    return origin + QPoint(static_cast<int>(offset.x()), static_cast<int>(offset.y()));
  }
  return std::nullopt;
}

QRect assumedIconRectangle(QPoint point, const QList<ScreenPlace>& screens) {
  int side = usualPanelThickness;
  for (const auto& screen : screens) {
    if (screen.geometry.contains(point)) side = std::clamp(panelThickness(point, screen), 16, thickestPanel);
  }
  return {point.x() - side / 2, point.y() - side / 2, side, side};
}

}  // namespace vorli::ui

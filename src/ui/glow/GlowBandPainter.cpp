#include "ui/glow/GlowBandPainter.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>

namespace vorli::ui {
namespace {

// Gradient that runs from the edge towards the middle.
QLinearGradient gradientOf(ScreenEdge edge, const QRectF& band) {
  switch (edge) {
    case ScreenEdge::top:
      return {band.topLeft(), band.bottomLeft()};
    case ScreenEdge::bottom:
      return {band.bottomLeft(), band.topLeft()};
    case ScreenEdge::left:
      return {band.topLeft(), band.topRight()};
    case ScreenEdge::right:
      return {band.topRight(), band.topLeft()};
  }
  return {};
}

}  // namespace

QRect glowBandGeometry(ScreenEdge edge, const QRect& screen, int depth) {
  const int down = std::min(depth, screen.height());
  const int across = std::min(depth, screen.width());
  switch (edge) {
    case ScreenEdge::top:
      return {screen.left(), screen.top(), screen.width(), down};
    case ScreenEdge::bottom:
      return {screen.left(), screen.top() + screen.height() - down, screen.width(), down};
    case ScreenEdge::left:
      return {screen.left(), screen.top(), across, screen.height()};
    case ScreenEdge::right:
      return {screen.left() + screen.width() - across, screen.top(), across, screen.height()};
  }
  return {};
}

void paintGlowBand(QPainter& painter, ScreenEdge edge, const QRect& band, const QColor& colour) {
  QColor clear = colour;
  clear.setAlphaF(0.0F);  // the same colour: transparent black would leave a grey seam on white
  QLinearGradient gradient = gradientOf(edge, QRectF(band));
  gradient.setColorAt(0.0, colour);
  gradient.setColorAt(1.0, clear);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(band, gradient);
}

}  // namespace vorli::ui

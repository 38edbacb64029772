#include "ui/popover/ControlPainter.h"

#include "base/Animated.h"
#include "ui/QtColour.h"
#include "ui/popover/TextStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr double focusGap = 3.0;

// As the fill of a control goes from rest to hovered, and from there to pressed.
Colour fillOf(const ControlColours& colours, const ControlPicture& state) {
  const double press = std::clamp(state.press, 0.0, 1.0);
  return mix(mix(colours.rest, colours.hover, state.hover), colours.pressed, press);
}

// A key presses without the pointer: what is held down is raised all the same.
double raised(const ControlPicture& state) {
  return std::max(state.hover, std::clamp(state.press, 0.0, 1.0));
}

void paintCapsule(QPainter& painter, const QRectF& shape, const Colour& fill) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColour(fill));
  painter.drawRoundedRect(shape, shape.height() / 2.0, shape.height() / 2.0);
}

void paintCapsuleFocus(QPainter& painter, const QRectF& shape, const PopoverPalette& palette) {
  const QRectF ring = shape.adjusted(-focusGap, -focusGap, focusGap, focusGap);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(qtColour(palette.focus), PopoverMetrics::focusWidth));
  painter.drawRoundedRect(ring, ring.height() / 2.0, ring.height() / 2.0);
}

// A square of 10 points with an arrow to the upper right.
void paintArrowSquare(QPainter& painter, const QPointF& corner, const Colour& colour) {
  painter.save();
  painter.translate(corner);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(qtColour(colour), 1.25, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawRoundedRect(QRectF(0.75, 0.75, 8.5, 8.5), 2.25, 2.25);
  QPainterPath arrow({3.25, 6.75});
  arrow.lineTo(6.6, 3.4);
  arrow.moveTo(3.9, 3.25);
  arrow.lineTo(6.75, 3.25);
  arrow.lineTo(6.75, 6.1);
  painter.drawPath(arrow);
  painter.restore();
}

// Eight teeth on a wheel of 14 points, and its hole.
QPainterPath gearShape() {
  constexpr double rootRadius = 4.9, outerRadius = 6.35, holeRadius = 2.2;
  struct Corner {
    double degrees, radius;
  };
  constexpr std::array tooth{Corner{-15.0, rootRadius}, Corner{-9.0, outerRadius}, Corner{9.0, outerRadius},
                             Corner{15.0, rootRadius}};
  QPolygonF wheel;
  for (int k = 0; k < 8; ++k) {
    for (const auto& corner : tooth) {
      const double angle = (k * 45.0 - 90.0 + corner.degrees) * std::numbers::pi / 180.0;
      wheel << QPointF(corner.radius * std::cos(angle), corner.radius * std::sin(angle));
    }
  }
  QPainterPath path;
  path.addPolygon(wheel);
  path.closeSubpath();
  path.addEllipse(QPointF(), holeRadius, holeRadius);
  return path;
}

}  // namespace

void paintBanner(QPainter& painter, const PlacedLabel& banner, const PopoverPalette& palette) {
  paintCapsule(painter, banner.capsule, palette.bannerPlate);
  PopoverTextStyles::shared().banner.draw(painter, banner.text.text, banner.text.origin, palette.banner);
}

void paintLink(QPainter& painter, const PlacedLabel& link, const QRectF& symbol, const ControlPicture& state,
               const PopoverPalette& palette) {
  constexpr double pressShrink = 0.02;
  const double scale = state.scales ? 1.0 - pressShrink * state.press : 1.0;
  const QPointF middle = link.capsule.center();
  painter.save();
  painter.translate(middle);
  painter.scale(scale, scale);
  painter.translate(-middle);
  const Colour colour = blend(palette.link, palette.linkHover, raised(state));
  paintCapsule(painter, link.capsule, mix(palette.linkPlate, palette.linkPlateHover, raised(state)));
  if (state.focused) paintCapsuleFocus(painter, link.capsule, palette);
  PopoverTextStyles::shared().link.draw(painter, link.text.text, link.text.origin, colour);
  paintArrowSquare(painter, symbol.topLeft(), colour);
  painter.restore();
}

void paintQuit(QPainter& painter, const PlacedQuit& placed, const QuitPicture& picture,
               const PopoverPalette& palette) {
  const auto& styles = PopoverTextStyles::shared();
  styles.question.draw(painter, placed.question.text, placed.question.origin, palette.headline);
  const auto button = [&](const QRectF& shape, const ControlColours& fill, const ControlPicture& state,
                          const PlacedText& text, const Colour& colour) {
    paintCapsule(painter, shape, fillOf(fill, state));
    if (state.focused) paintCapsuleFocus(painter, shape, palette);
    styles.button.draw(painter, text.text, text.origin, colour);
  };
  button(placed.cancel, palette.plate, picture.cancel, placed.cancelText, palette.cancelText);
  button(placed.quit, palette.quit, picture.quit, placed.quitText, palette.quitText);
}

void paintGear(QPainter& painter, const ControlPicture& state, const PopoverPalette& palette) {
  constexpr double plateRadius = 8.0, stroke = 1.2;
  const QRectF& frame = PopoverMetrics::gear;
  if (raised(state) > 0.0) {
    Colour plate = mix(palette.plate.rest, palette.plate.pressed, std::clamp(state.press, 0.0, 1.0));
    plate.alpha *= raised(state);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColour(plate));
    painter.drawRoundedRect(frame, plateRadius, plateRadius);
  }
  painter.setBrush(Qt::NoBrush);
  if (state.focused) {
    painter.setPen(QPen(qtColour(palette.focus), PopoverMetrics::focusWidth));
    painter.drawRoundedRect(frame.adjusted(1.0, 1.0, -1.0, -1.0), plateRadius - 1.0, plateRadius - 1.0);
  }
  static const QPainterPath shape = gearShape();
  const Colour colour = blend(palette.gear, palette.gearHover, raised(state));
  painter.setPen(QPen(qtColour(colour), stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(shape.translated(frame.center()));
}

}  // namespace vorli::ui

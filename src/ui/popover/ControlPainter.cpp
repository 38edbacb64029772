#include "ui/popover/ControlPainter.h"

#include "base/Animated.h"
#include "ui/kit/QtColour.h"
#include "ui/kit/Symbol.h"
#include "ui/popover/TextStyle.h"

#include <QPainter>
#include <algorithm>

namespace vorli::ui {
namespace {

constexpr double focusGap = 3.0;

// Returns the fill of a control on its way from rest to hovered, and from there to pressed.
Colour fillOf(const ControlColours& colours, const ControlPicture& state) {
  const double press = std::clamp(state.press, 0.0, 1.0);
  return mix(mix(colours.rest, colours.hover, state.hover), colours.pressed, press);
}

// Strength of a control's highlight, from 0 to 1. A key presses without the pointer, so a press counts as
// well.
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
  paintSymbol(painter, "arrow.up.right.square", symbol, qtColour(colour));
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
  constexpr double plateRadius = 8.0, symbolSide = 14.0;
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
  QRectF place(0.0, 0.0, symbolSide, symbolSide);
  place.moveCenter(frame.center());
  paintSymbol(painter, "gearshape", place, qtColour(blend(palette.gear, palette.gearHover, raised(state))));
}

}  // namespace vorli::ui

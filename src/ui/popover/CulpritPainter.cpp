#include "ui/popover/CulpritPainter.h"

#include "base/Animated.h"
#include "ui/QtColour.h"
#include "ui/popover/TextStyle.h"

#include <QPainter>

namespace vorli::ui {
namespace {

constexpr double hoverScale = 1.06, pressScale = 0.92;
constexpr double plateRadius = 5.0;

enum class Layer { plate, text };

void paintName(QPainter& painter, const PlacedName& name, const ControlPicture& state, Layer layer,
               const PopoverPalette& palette) {
  const double scale = state.scales ? mix(mix(1.0, hoverScale, state.hover), pressScale, state.press) : 1.0;
  const QPointF middle = name.box.center();
  painter.save();
  painter.translate(middle);
  painter.scale(scale, scale);
  painter.translate(-middle);
  if (layer == Layer::text) {
    PopoverTextStyles::shared().name.draw(painter, name.text, {name.box.left(), name.baseline},
                                          blend(palette.name, palette.nameHover, state.hover));
    painter.restore();
    return;
  }
  painter.setPen(Qt::NoPen);
  if (state.hover > 0.0) {
    painter.setBrush(qtColour(palette.namePlate.withAlpha(palette.namePlate.alpha * state.hover)));
    painter.drawRoundedRect(name.plate(), plateRadius, plateRadius);
  }
  if (state.focused) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(qtColour(palette.focus), PopoverMetrics::focusWidth));
    painter.drawRoundedRect(name.plate().adjusted(0.0, -0.5, 0.0, 0.5), plateRadius, plateRadius);
  }
  painter.restore();
}

}  // namespace

void paintCulprits(QPainter& painter, const PlacedCulprits& culprits, std::span<const ControlPicture> names,
                   const PopoverPalette& palette) {
  const auto paintNames = [&](Layer layer) {
    for (std::size_t i = 0; i < culprits.names.size(); ++i) {
      paintName(painter, culprits.names[i], i < names.size() ? names[i] : ControlPicture{}, layer, palette);
    }
  };
  // A plate reaches under the neighbouring words, which stay readable.
  paintNames(Layer::plate);
  const auto& style = PopoverTextStyles::shared().culprit;
  for (const auto& text : culprits.texts) style.draw(painter, text.text, text.origin, palette.culprit);
  paintNames(Layer::text);
}

}  // namespace vorli::ui

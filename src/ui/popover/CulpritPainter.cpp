#include "ui/popover/CulpritPainter.h"

#include "base/Animated.h"
#include "ui/kit/QtColour.h"
#include "ui/popover/TextStyle.h"

#include <QPainter>
#include <algorithm>

namespace vorli::ui {
namespace {

constexpr double hoverScale = 1.06, pressScale = 0.92;
constexpr double culpritPlateRadius = 5.0;

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
    painter.drawRoundedRect(name.plate(), culpritPlateRadius, culpritPlateRadius);
  }
  if (state.focused) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(qtColour(palette.focus), PopoverMetrics::focusWidth));
    painter.drawRoundedRect(name.plate().adjusted(0.0, -0.5, 0.0, 0.5), culpritPlateRadius,
                            culpritPlateRadius);
  }
  painter.restore();
}

// Returns how far the words beside a highlighted name move aside, so that its plate does not touch them.
double roomFor(const PlacedName& name, const ControlPicture& state) {
  constexpr double clearance = 1.0;
  const double share = std::clamp(std::max(state.hover, state.focused ? 1.0 : 0.0), 0.0, 1.0);
  const double scale = state.scales ? mix(1.0, hoverScale, state.hover) : 1.0;
  const double outline = state.focused ? PopoverMetrics::focusWidth / 2.0 : 0.0;
  const double reach = (name.plate().width() / 2.0 + outline) * scale - name.box.width() / 2.0;
  const double blank = PopoverTextStyles::shared().culprit.width(QStringLiteral(" "));
  return share * std::max(reach + clearance - blank, 0.0);
}

// Returns the place at which the piece of the sentence that starts at `piece` is painted.
QPointF movedAside(QPointF piece, double baseline, const PlacedCulprits& culprits,
                   std::span<const ControlPicture> states) {
  for (std::size_t i = 0; i < std::min(culprits.names.size(), states.size()); ++i) {
    const auto& name = culprits.names[i];
    if (name.baseline != baseline || name.box.left() == piece.x()) continue;
    const double room = roomFor(name, states[i]);
    piece.rx() += piece.x() > name.box.left() ? room : -room;
  }
  return piece;
}

}  // namespace

void paintCulprits(QPainter& painter, const PlacedCulprits& culprits, std::span<const ControlPicture> names,
                   const PopoverPalette& palette) {
  const auto paintNames = [&](Layer layer) {
    for (std::size_t i = 0; i < culprits.names.size(); ++i) {
      PlacedName name = culprits.names[i];
      name.box.moveTopLeft(movedAside(name.box.topLeft(), name.baseline, culprits, names));
      paintName(painter, name, i < names.size() ? names[i] : ControlPicture{}, layer, palette);
    }
  };
  paintNames(Layer::plate);
  const auto& style = PopoverTextStyles::shared().culprit;
  for (const auto& text : culprits.texts) {
    style.draw(painter, text.text, movedAside(text.origin, text.origin.y(), culprits, names),
               palette.culprit);
  }
  paintNames(Layer::text);
}

}  // namespace vorli::ui

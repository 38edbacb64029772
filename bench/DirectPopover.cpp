#include "bench/DirectPopover.h"

#include "ui/kit/QtColour.h"
#include "ui/light/RadialProfile.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPalette.h"
#include "ui/popover/TextStyle.h"

#include <QConicalGradient>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <cmath>
#include <map>
#include <numbers>

namespace vorli::bench {
namespace {

using namespace ui;
using Metrics = PopoverMetrics;

QBrush vertical(double top, double bottom, const Colour& first, const Colour& last) {
  QLinearGradient gradient(0.0, top, 0.0, bottom);
  gradient.setColorAt(0.0, qtColour(first));
  gradient.setColorAt(1.0, qtColour(last));
  return gradient;
}

// Computed once for each blur, so that only the painting is measured.
const RadialProfile& profileOf(const AuroraLayer& layer) {
  static std::map<std::pair<double, double>, RadialProfile> known;
  const auto key = std::pair(layer.gradient.stops[1].colour.green, layer.blur);
  auto found = known.find(key);
  if (found == known.end())
    found = known.emplace(key, RadialProfile::blurred(layer.gradient, layer.blur / 2.0)).first;
  return found->second;
}

void paintLayer(QPainter& painter, const QPointF& centre, const AuroraLayer& layer) {
  if (layer.opacity <= 0.002) return;
  const auto& profile = profileOf(layer);
  const double reach = profile.end() * layer.scale;
  QRadialGradient gradient(centre, reach);
  for (int i = 0; i <= RadialProfile::intervals; ++i) {
    const auto& stop = profile.stop(i);
    const Colour colour{stop.red / std::max(stop.alpha, 1e-5F), stop.green / std::max(stop.alpha, 1e-5F),
                        stop.blue / std::max(stop.alpha, 1e-5F), stop.alpha * layer.opacity};
    gradient.setColorAt(static_cast<double>(i) / RadialProfile::intervals, qtColour(colour));
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(gradient);
  painter.drawEllipse(centre, reach, reach);
}

void paintRing(QPainter& painter, const QPointF& centre, const PopoverPicture& picture) {
  const auto& palette = PopoverPalette::of(picture.appearance);
  const auto& ring = picture.ring;
  constexpr Colour white{1.0, 1.0, 1.0};
  QRadialGradient halo(centre, 96.0);
  for (const auto& [at, share] :
       {std::pair(0.34, 0.0), std::pair(0.57, 1.0), std::pair(0.84, 0.1), std::pair(1.0, 0.0)})
    halo.setColorAt(at, qtColour(ring.stateColour.withAlpha(share * palette.haloStrength)));
  painter.setPen(Qt::NoPen);
  painter.setBrush(halo);
  painter.drawEllipse(centre, 96.0, 96.0);
  painter.setBrush(vertical(centre.y() - 42.0, centre.y() + 42.0,
                            white.withAlpha(palette.lens.rest * ring.lens),
                            white.withAlpha(palette.lens.rest * ring.lens * palette.lens.bottomShare)));
  painter.drawEllipse(centre, 42.0, 42.0);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(
      QPen(vertical(centre.y() - 42.0, centre.y() + 42.0, palette.lens.rimTop, palette.lens.rimBottom), 1.0));
  painter.drawEllipse(centre, 41.5, 41.5);
  painter.setPen(QPen(qtColour(palette.track), Metrics::ringWidth));
  painter.drawEllipse(centre, Metrics::ringRadius, Metrics::ringRadius);
  if (ring.progress <= 0.004) return;
  const Colour ink = themeOf(picture.appearance).ringInk(ring.stateColour);
  QConicalGradient arc(centre, 90.0);
  arc.setColorAt(0.0, qtColour(ink));
  arc.setColorAt(1.0 - ring.progress, qtColour(ink));
  arc.setColorAt(1.0, qtColour(blend(ink, palette.arcTailGround, 0.42)));
  painter.setPen(QPen(arc, Metrics::ringWidth, Qt::SolidLine, Qt::RoundCap));
  const QRectF box(centre.x() - 52.0, centre.y() - 52.0, 104.0, 104.0);
  painter.drawArc(box, 90 * 16, -static_cast<int>(ring.progress * 360.0 * 16.0));
}

void paintSparks(QPainter& painter, const QPointF& centre, const PopoverPicture& picture) {
  if (!picture.aurora.sparks) return;
  painter.setPen(Qt::NoPen);
  for (const auto& spark : *picture.aurora.sparks) {
    if (spark.opacity <= 0.0) continue;
    const QPointF at = centre + QPointF(spark.x, spark.y);
    QRadialGradient shadow(at, 5.2 * spark.scale);
    for (const auto& [stop, share] :
         {std::pair(0.0, 0.8), std::pair(0.3, 0.62), std::pair(0.6, 0.2), std::pair(1.0, 0.0)})
      shadow.setColorAt(stop, QColor(255, 255, 255, static_cast<int>(255.0 * share * spark.opacity)));
    painter.setBrush(shadow);
    painter.drawEllipse(at, 5.2 * spark.scale, 5.2 * spark.scale);
    painter.setBrush(QColor(255, 255, 255, static_cast<int>(255.0 * spark.opacity)));
    painter.drawEllipse(at, 1.6 * spark.scale, 1.6 * spark.scale);
  }
}

void paintText(QPainter& painter, const PopoverPicture& picture) {
  const auto& palette = PopoverPalette::of(picture.appearance);
  const auto& styles = PopoverTextStyles::shared();
  const auto layout = PopoverLayout::of(picture.words, 1.0);
  for (const auto& line : layout.headline)
    styles.headline.draw(painter, line.text, line.origin, palette.headline);
  for (const auto& line : layout.aside) styles.aside.draw(painter, line.text, line.origin, palette.aside);
  if (picture.ring.labelOpacity > 0.0) {
    styles.label.draw(painter, QStringLiteral("Polish"), {116.0, picture.ringCentreY + 4.75}, palette.label);
  }
}

}  // namespace

void paintPopoverDirectly(QPainter& painter, const PopoverPicture& picture) {
  const auto& palette = PopoverPalette::of(picture.appearance);
  const QPointF centre(Metrics::centreX, picture.ringCentreY);
  const QRectF card(0.0, 0.0, Metrics::width, picture.cardHeight);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(vertical(0.0, Metrics::tallest, palette.paperTop, palette.paperBottom));
  painter.drawRoundedRect(card, Metrics::cornerRadius, Metrics::cornerRadius);
  painter.save();
  painter.setClipRect(card);
  paintLayer(painter, centre, picture.aurora.warmCloud);
  paintLayer(painter, centre, picture.aurora.bloom);
  paintLayer(painter, centre, picture.aurora.leak);
  paintRing(painter, centre, picture);
  paintSparks(painter, centre, picture);
  paintText(painter, picture);
  painter.restore();
  painter.setBrush(Qt::NoBrush);
  painter.setPen(
      QPen(vertical(0.0, picture.cardHeight, palette.innerHairlineTop, palette.innerHairlineBottom), 1.0));
  painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), 17.5, 17.5);
}

}  // namespace vorli::bench

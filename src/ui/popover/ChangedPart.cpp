#include "ui/popover/ChangedPart.h"

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPainter.h"

#include <algorithm>

namespace vorli::ui {
namespace {

bool sameLayer(const AuroraLayer& a, const AuroraLayer& b) {
  return a.gradient == b.gradient && a.blur == b.blur && a.scale == b.scale && a.opacity == b.opacity;
}

bool sameAurora(const AuroraPicture& a, const AuroraPicture& b) {
  return !hasLitSparks(a) && !hasLitSparks(b) && sameLayer(a.warmCloud, b.warmCloud) &&
         sameLayer(a.bloom, b.bloom) && sameLayer(a.leak, b.leak);
}

bool samePlaces(const PopoverPicture& a, const PopoverPicture& b) {
  return a.appearance == b.appearance && a.cardTop == b.cardTop && a.cardHeight == b.cardHeight &&
         a.ringCentreY == b.ringCentreY && a.contentOpacity == b.contentOpacity;
}

bool sameButForTheGear(const WordsPicture& a, WordsPicture b) {
  b.gear = a.gear;
  return a == b;
}

}  // namespace

bool hasLitSparks(const AuroraPicture& aurora) {
  return aurora.sparks &&
         std::ranges::any_of(*aurora.sparks, [](const auto& spark) { return spark.opacity > 0.0; });
}

std::optional<QRectF> changedPart(const PopoverPicture& shown, const PopoverPicture& next) {
  if (!samePlaces(shown, next)) return std::nullopt;
  const QRectF card(0.0, next.cardTop, PopoverMetrics::width, next.cardHeight);
  if (!sameAurora(shown.aurora, next.aurora) || shown.calmIntensity != next.calmIntensity) return card;
  QRectF changed;
  if (shown.haloBreath != next.haloBreath || shown.ring != next.ring) {
    // The halo grows with the ring.
    const bool isOfOneSize = shown.ring.scale == 1.0 && next.ring.scale == 1.0;
    changed |= isOfOneSize ? PopoverPainter::haloOf(next) : card;
  }
  if (shown.words != next.words) {
    // At a fractional scale, the gear's edges lie within pixels, which a window may round away.
    const QRectF gear = PopoverMetrics::gear.adjusted(-1.0, -1.0, 1.0, 1.0);
    changed |= sameButForTheGear(shown.words, next.words) ? gear : card;
  }
  return changed;
}

}  // namespace vorli::ui

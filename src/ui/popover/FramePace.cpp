#include "ui/popover/FramePace.h"

#include "ui/popover/ChangedPart.h"

#include <algorithm>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr double lightSeconds = 1.0 / 30.0, breathSeconds = 1.0 / 10.0;

// Step of the ring's end between two frames that is too small to be seen, in points.
constexpr double unseenStep = 0.5;
constexpr double ringLength = 2.0 * std::numbers::pi * PopoverMetrics::ringRadius;

// A tick often moves the ring by less than a hundredth: painting that as fast as the display is wasted. The
// rest of its way is too short to be seen, so its arrival needs no frame of its own.
double ringSeconds(const PopoverView& view, double now, double displaySeconds) {
  const double left = view.ringArrivesAt() - now;
  if (left <= 0.0) return breathSeconds;
  const double points = view.ringWayLeft(now) * ringLength;
  const double step = points > 0.0 ? unseenStep / points * left : breathSeconds;
  return std::clamp(step, displaySeconds, breathSeconds);
}

}  // namespace

std::optional<double> secondsToNextFrame(const PopoverView& view, const PopoverScene& scene,
                                         const PopoverPicture& shown, double now, double displaySeconds) {
  if (now < scene.restsAt()) return displaySeconds;
  switch (view.motion(now)) {
    case PopoverMotion::none:
      return std::nullopt;
    case PopoverMotion::breath:
      return breathSeconds;
    case PopoverMotion::full:
      break;
  }
  if (hasLitSparks(shown.aurora) || now < view.ringRestsAt()) return displaySeconds;
  const double light = now < view.lightRestsAt() ? lightSeconds : breathSeconds;
  return std::min(light, ringSeconds(view, now, displaySeconds));
}

}  // namespace vorli::ui

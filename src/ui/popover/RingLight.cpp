#include "ui/popover/RingLight.h"

#include "ambient/Palette.h"
#include "base/Animated.h"
#include "ui/light/OpacityStops.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double haloRadius = 96.0;
constexpr std::array haloStops{OpacityStop{0.0, 0.0},   OpacityStop{0.34, 0.0},  OpacityStop{0.44, 0.35},
                               OpacityStop{0.52, 0.85}, OpacityStop{0.57, 1.0},  OpacityStop{0.63, 0.72},
                               OpacityStop{0.72, 0.34}, OpacityStop{0.84, 0.10}, OpacityStop{1.0, 0.0}};

constexpr double invisible = 0.002;  // at most half a step of 255

// Profiles are computed only for multiples of this blur. A blur that changes from frame to frame would need a
// new profile in each, which takes as long as the painting.
constexpr double blurStep = 4.0;

// Returns the strength of the cool lights of a polish. Cloud and halo take on their colour to the same
// degree: orange and green light would add up to olive.
double coolnessOf(const AuroraPicture& aurora) {
  return std::clamp(1.0 - (1.0 - aurora.bloom.opacity) * (1.0 - aurora.leak.opacity), 0.0, 1.0);
}

}  // namespace

const std::vector<Premultiplied>& RingLight::sample(const PopoverPicture& picture) {
  const auto& palette = PopoverPalette::of(picture.appearance);
  samples_.clear();
  const double coolness = coolnessOf(picture.aurora);
  const auto cooled = [coolness](const Colour& colour) {
    return mix(colour, vorli::palette::teal, coolness);
  };
  const auto& cloud = picture.aurora.warmCloud;
  addCloud(cloud, cooled(cloud.gradient.stops.front().colour), palette.cloudShare);
  add(blooms_, picture.aurora.bloom, palette.bloomShare);
  add(leaks_, picture.aurora.leak, 1.0);
  addHalo(picture, cooled(picture.ring.stateColour), palette);
  return samples_;
}

RadialProfile RingLight::profileOf(Profiles& known, const AuroraLayer& layer) {
  const auto exact = [&](int step) -> const RadialProfile& {
    const auto found = known.find(step);
    if (found != known.end()) return found->second;
    // The standard deviation is half the radius of the blur.
    return known.emplace(step, RadialProfile::blurred(layer.gradient, step * blurStep / 2.0)).first->second;
  };
  const double place = std::max(layer.blur / blurStep, 1.0);
  const int step = static_cast<int>(place);
  const double share = place - step;
  return share == 0.0 ? exact(step) : RadialProfile::between(exact(step), exact(step + 1), share);
}

// The cloud's colour changes with the ring but its shape does not, so its profile is kept in white.
void RingLight::addCloud(const AuroraLayer& layer, const Colour& colour, double share) {
  AuroraLayer white = layer;
  for (auto& stop : white.gradient.stops) stop.colour = palette::white.withAlpha(stop.colour.alpha);
  const double opacity = layer.opacity * share;
  if (opacity > invisible) lay(profileOf(clouds_, white), layer.scale, opacity, &colour);
}

void RingLight::add(Profiles& known, const AuroraLayer& layer, double share) {
  const double opacity = layer.opacity * share;
  if (opacity > invisible) lay(profileOf(known, layer), layer.scale, opacity, nullptr);
}

void RingLight::lay(const RadialProfile& profile, double scale, double opacity, const Colour* tint) {
  const double reach = profile.end() * scale;
  const auto count = static_cast<std::size_t>(std::ceil(reach * samplesPerPoint));
  if (samples_.size() < count) samples_.resize(count);
  const auto share = static_cast<float>(opacity);
  const auto stopsPerSample = static_cast<float>(RadialProfile::intervals / (reach * samplesPerPoint));
  for (std::size_t i = 0; i < count; ++i) {
    Premultiplied light = profile.atStop((static_cast<float>(i) + 0.5F) * stopsPerSample) * share;
    if (tint) light = Premultiplied::of(*tint, light.alpha);
    samples_[i] = light.over(samples_[i]);
  }
}

void RingLight::addHalo(const PopoverPicture& picture, const Colour& colour, const PopoverPalette& palette) {
  constexpr double growth = 0.035, steady = 0.72, breathing = 0.28, underPointer = 0.08, heldByCalm = 0.35;
  constexpr double restedGain = 0.8;  // a polished ring rests in its light, so that it does not look disabled
  const double breath = picture.haloBreath;
  const double hover = picture.ring.canPolish ? underPointer * picture.ring.button.hover : 0.0;
  const double strength = (palette.haloStrength * (steady + breathing * breath) + hover) *
                          (1.0 - heldByCalm * picture.calmIntensity * (1.0 - picture.ring.rested)) *
                          (1.0 + restedGain * picture.ring.rested) * picture.contentOpacity;
  if (strength <= invisible) return;
  const double reach = haloRadius * (1.0 + growth * breath) * picture.ring.scale;
  const auto count = static_cast<std::size_t>(std::ceil(reach * samplesPerPoint));
  if (samples_.size() < count) samples_.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double opacity =
        opacityAt(haloStops, (static_cast<double>(i) + 0.5) / samplesPerPoint / reach) * strength;
    samples_[i] = Premultiplied::of(colour, opacity).over(samples_[i]);
  }
}

}  // namespace vorli::ui

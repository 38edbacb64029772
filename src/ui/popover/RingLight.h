#pragma once

#include "base/Colour.h"
#include "ui/light/RadialProfile.h"
#include "ui/popover/PopoverPalette.h"
#include "ui/popover/PopoverPicture.h"

#include <cstddef>
#include <map>
#include <vector>

namespace vorli::ui {

/// All light around the ring's centre as one function of the distance from it. Cloud, bloom, leak and halo
/// share that centre, so they are laid over each other here once per frame instead of pixel by pixel.
class RingLight {
 public:
  static constexpr int samplesPerPoint = 4;

  /// Samples the light from the centre outwards, `samplesPerPoint` samples per point, each at the middle of
  /// its interval. There is no light beyond the last one. The reference is valid until the next call.
  const std::vector<Premultiplied>& sample(const PopoverPicture& picture);

  /// Number of profiles computed since it was made.
  std::size_t profileCount() const { return clouds_.size() + blooms_.size() + leaks_.size(); }

 private:
  // Profiles by blur, in steps.
  using Profiles = std::map<int, RadialProfile>;

  void add(Profiles& known, const AuroraLayer& layer, double share);
  void addCloud(const AuroraLayer& layer, const Colour& colour, double share);
  static RadialProfile profileOf(Profiles& known, const AuroraLayer& layer);
  void lay(const RadialProfile& profile, double scale, double opacity, const Colour* tint);
  void addHalo(const PopoverPicture& picture, const Colour& colour, const PopoverPalette& palette);

  Profiles clouds_, blooms_, leaks_;
  std::vector<Premultiplied> samples_;
};

}  // namespace vorli::ui

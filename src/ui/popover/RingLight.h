#pragma once

#include "base/Colour.h"
#include "ui/popover/PopoverPalette.h"
#include "ui/popover/PopoverPicture.h"
#include "ui/popover/RadialProfile.h"

#include <map>
#include <vector>

namespace vorli::ui {

/// All light round the ring's centre as one function of the distance from it: cloud, bloom, leak and halo lie
/// on each other with one centre, so they are laid over each other here, once a frame, and not pixel by
/// pixel.
class RingLight {
 public:
  static constexpr int samplesPerPoint = 4;

  /// Samples from the centre outwards, `samplesPerPoint` to a point, each of the middle of its part; it is
  /// dark beyond the last.
  const std::vector<Premultiplied>& sample(const PopoverPicture& picture);

 private:
  // By the blur in steps.
  using Profiles = std::map<int, RadialProfile>;

  void add(Profiles& known, const AuroraLayer& layer, double share);
  void addCloud(const AuroraLayer& layer, double share);
  static RadialProfile profileOf(Profiles& known, const AuroraLayer& layer);
  void lay(const RadialProfile& profile, double scale, double opacity, const Colour* tint);
  void addHalo(const PopoverPicture& picture, const PopoverPalette& palette);

  Profiles clouds_, blooms_, leaks_;
  std::vector<Premultiplied> samples_;
};

}  // namespace vorli::ui

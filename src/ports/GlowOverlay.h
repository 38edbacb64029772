#pragma once

#include "base/Colour.h"

#include <functional>

namespace vorli::ports {

/// What a glow shows at one moment: along each edge of the screen a gradient, from `colour` at `opacity` at
/// the edge to clear towards the middle.
struct GlowPicture {
  Colour colour;
  double opacity = 0.0;

  bool operator==(const GlowPicture&) const = default;
};

/// A light along the edges of the main screen, above all windows and on all workspaces. It lets every click
/// through. Main thread; no call blocks.
class GlowOverlay {
 public:
  using Frames = std::function<GlowPicture(double time)>;

  virtual ~GlowOverlay() = default;

  /// Lays the overlay over the main screen, with gradients this deep, and shows nothing yet. False when there
  /// is no main screen, or none that can be seen through; to be asked again the next time.
  virtual bool build(double bandDepthPoints) = 0;

  /// Asks `frames` for the picture of each frame from now until the scheduler's time `restsAt`, and keeps the
  /// one of that time. Replaces what was going on. Only after a `build` that succeeded.
  virtual void animate(Frames frames, double restsAt) = 0;
};

}  // namespace vorli::ports

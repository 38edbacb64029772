#pragma once

#include "base/Colour.h"
#include "base/Subscription.h"

#include <functional>
#include <optional>

namespace vorli::ports {

/// What a glow shows at one moment: along each edge of the screen a gradient, from `colour` at `opacity` at
/// the edge to clear towards the middle.
struct GlowPicture {
  Colour colour;
  double opacity = 0.0;

  bool operator==(const GlowPicture&) const = default;
};

/// A screen's place among all screens, in points, y downwards.
struct ScreenFrame {
  double x = 0.0, y = 0.0;
  double width = 0.0, height = 0.0;

  bool operator==(const ScreenFrame&) const = default;
};

/// A light along the edges of one screen, above all windows and on all workspaces. It lets every click
/// through. Main thread; no call blocks for longer than a round trip to the display.
class GlowOverlay {
 public:
  using Frames = std::function<GlowPicture(double time)>;

  virtual ~GlowOverlay() = default;

  /// The screen that the user works on: that of the window with the keyboard. Empty when there is no screen.
  virtual std::optional<ScreenFrame> mainScreen() = 0;
  /// `handler` runs when screens came, went or changed their size.
  [[nodiscard]] virtual Subscription subscribeToScreens(std::function<void()> handler) = 0;

  /// Lays the overlay over the main screen, with gradients this deep, and shows nothing yet. False when there
  /// is no main screen. Where a window cannot be seen through, nothing is shown until it can.
  virtual bool build(double bandDepthPoints) = 0;
  /// Where it lies. This and what follows only after a `build` that succeeded.
  virtual ScreenFrame frame() const = 0;
  /// Lays it elsewhere at once; what it shows goes on there.
  virtual void setFrame(const ScreenFrame& frame) = 0;

  /// Asks `frames` for the picture of each frame from now until the scheduler's time `restsAt`, and keeps the
  /// one of that time. Replaces what was going on. A picture that is at rest, or shows nothing, costs
  /// nothing.
  virtual void animate(Frames frames, double restsAt) = 0;

  /// Takes the overlay away, and what it animates; `build` makes a new one.
  virtual void remove() = 0;
};

}  // namespace vorli::ports

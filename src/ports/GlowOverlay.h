#pragma once

#include "base/Colour.h"
#include "base/Subscription.h"

#include <functional>
#include <optional>

namespace vorli::ports {

/// One frame of a glow: a gradient along each edge of the screen, from `colour` at `opacity` at the edge to
/// transparent towards the middle.
struct GlowPicture {
  Colour colour;
  double opacity = 0.0;

  bool operator==(const GlowPicture&) const = default;
};

/// Position and size of a screen among all screens, in points, y downwards.
struct ScreenFrame {
  double x = 0.0, y = 0.0;
  double width = 0.0, height = 0.0;

  bool operator==(const ScreenFrame&) const = default;
};

/// A light along the edges of one screen, above all windows and on all workspaces. All clicks pass through
/// it. Main thread; no call blocks for longer than a round trip to the display.
class GlowOverlay {
 public:
  using Frames = std::function<GlowPicture(double time)>;

  virtual ~GlowOverlay() = default;

  /// The screen that the user works on: the one with the focused window. Empty when there is no screen.
  virtual std::optional<ScreenFrame> mainScreen() = 0;
  /// `handler` runs when a screen is added, removed or resized.
  [[nodiscard]] virtual Subscription subscribeToScreens(std::function<void()> handler) = 0;

  /// Creates the overlay on the main screen, with gradients of this depth; it shows nothing yet. False when
  /// there is no main screen. While windows cannot be transparent, nothing is shown.
  virtual bool build(double bandDepthPoints) = 0;
  /// The overlay's frame. This and the following calls require a successful `build`.
  virtual ScreenFrame frame() const = 0;
  /// Moves the overlay at once; its animation continues there.
  virtual void setFrame(const ScreenFrame& frame) = 0;

  /// Calls `frames` for the picture of each frame from now until the scheduler's time `restsAt`, then keeps
  /// the picture of that time. Replaces the animation in progress. A picture that is at rest, or shows
  /// nothing, costs nothing.
  virtual void animate(Frames frames, double restsAt) = 0;

  /// Removes the overlay and its animation; `build` creates a new one.
  virtual void remove() = 0;
};

}  // namespace vorli::ports

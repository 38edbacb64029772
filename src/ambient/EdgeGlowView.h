#pragma once

#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "ports/GlowOverlay.h"

#include <vector>

namespace vorli {

class EdgeGlowController;

/// Inputs of the edge glow's view.
struct EdgeGlowState {
  Published<double, EdgeGlowController> progress{0.0};
  Published<double, EdgeGlowController> calm{0.0};
};

/// The warning at the edges of the screen, as a picture that depends on the time: nothing below a progress of
/// 0.9, above it a light that grows, reddens and breathes. Main thread.
class EdgeGlowView {
 public:
  static constexpr double bandDepthPoints = 100.0;

  // Values for a steady state.
  static Colour glowColour(double progress);
  static double bandOpacity(double progress);
  /// Opacity of the view at the peak of a breath.
  static double viewOpacity(double progress, double calm);

  EdgeGlowView(const Scheduler& clock, const EdgeGlowState& state);

  /// Call when the view is on the screen: it starts to breathe.
  void appear();

  /// Call when the state has changed: starts a transition from the current picture. Transitions in progress
  /// continue underneath, so that the picture follows a state that changes all the time, with a delay. False
  /// when the picture does not change.
  bool stateChanged();

  enum class Breathing { running, held };

  ports::GlowPicture picture(double time, Breathing breathing) const;
  /// The time after which only the breathing changes the picture.
  double settlesAt() const;
  /// True when there is light once the picture has settled.
  bool isLit() const { return target_.bandOpacity > 0.0; }

 private:
  struct Shown {
    Colour colour;
    double bandOpacity = 0.0;
    double viewOpacity = 0.0;

    bool operator==(const Shown&) const = default;
  };
  // A transition that began at `start`.
  struct Change {
    double start;
    Shown from, to;
  };

  Shown targetOf(const EdgeGlowState& state) const;
  Shown shown(double time) const;

  const Scheduler& clock_;
  const EdgeGlowState& state_;
  Animated<double> breath_;
  Shown target_;
  std::vector<Change> changes_;  // in progress, in order of their start
};

}  // namespace vorli

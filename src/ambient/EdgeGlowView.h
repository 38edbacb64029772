#pragma once

#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Observable.h"
#include "base/Scheduler.h"
#include "ports/GlowOverlay.h"

#include <vector>

namespace vorli {

/// What the edge glow's view follows.
struct EdgeGlowState {
  Observable<double> progress{0.0};
  Observable<double> calm{0.0};
};

/// The warning at the edges of the screen as a picture of the time: nothing below a progress of 0.9, above it
/// a light that grows, reddens and breathes. Main thread.
class EdgeGlowView {
 public:
  static constexpr double bandDepthPoints = 100.0;

  // What a steady state gives.
  static Colour glowColour(double progress);
  static double bandOpacity(double progress);
  /// Of the whole view at the height of a breath.
  static double viewOpacity(double progress, double calm);

  EdgeGlowView(const Scheduler& clock, const EdgeGlowState& state);

  /// The view is on the screen: it begins to breathe.
  void appear();

  /// The state has changed: moves there from what is shown. Changes under way go on beneath, so that a state
  /// that changes all the time is followed at a distance and not left behind. False when the picture stays.
  bool stateChanged();

  enum class Breathing { running, held };

  ports::GlowPicture picture(double time, Breathing breathing) const;
  /// From when on only the breath moves the picture.
  double settlesAt() const;
  /// Whether there is light once the picture has settled.
  bool isLit() const { return target_.bandOpacity > 0.0; }

 private:
  struct Shown {
    Colour colour;
    double bandOpacity = 0.0;
    double viewOpacity = 0.0;

    bool operator==(const Shown&) const = default;
  };
  // What is still missing of a change that began at `start`.
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
  std::vector<Change> changes_;  // under way, in order of their start
};

}  // namespace vorli

#pragma once

#include "ambient/Movement.h"
#include "ambient/WhiteSparkShower.h"
#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Scheduler.h"
#include "base/TaskScope.h"

#include <array>
#include <optional>

namespace vorli {

/// A radial gradient, from the centre outwards; stops at shares of its radius.
struct AuroraGradient {
  struct Stop {
    double at = 0.0;
    Colour colour;

    bool operator==(const Stop&) const = default;
  };
  std::array<Stop, 3> stops;
  double radius = 0.0;  // points; the layer's frame is twice as wide and high

  bool operator==(const AuroraGradient&) const = default;
};

/// One light of the aurora at one moment: blurred first, then scaled about the centre, then shown at its
/// opacity.
struct AuroraLayer {
  AuroraGradient gradient;
  double blur = 0.0;
  double scale = 1.0;
  double opacity = 0.0;
  double rotationDegrees = 0.0;  // of a layer that is round: it changes no pixel
};

/// All of the aurora at one moment, from back to front.
struct AuroraPicture {
  AuroraLayer warmCloud;
  AuroraLayer bloom;
  AuroraLayer leak;
  std::optional<WhiteSparkShower::Sparks> sparks;
};

/// The light behind the popover's ring: at rest a warm cloud in the ring's colour; after a polish the cloud
/// swells and leaves, a white light leaks through, a cool bloom comes up and sparks fly. Main thread.
class AuroraField {
 public:
  explicit AuroraField(Scheduler& scheduler);

  /// The view has appeared: the cloud begins to turn, for good.
  void appear();

  /// Starts the sequence of a polish, from its beginning. The late steps of one that still runs are kept.
  void clearTriggered();

  AuroraPicture picture(double time, const Colour& stateColor, double calmIntensity,
                        Movement movement = Movement::kept) const;

  /// When the sequence is over; the turning, which nobody sees, does not count.
  double restsAt() const { return restsAt_; }

  Animated<double> rotation;  // degrees
  Animated<double> warmScale;
  Animated<double> warmOpacity;
  Animated<double> warmBlur;
  Animated<double> bloomScale;
  Animated<double> bloomOpacity;
  Animated<double> bloomBlur;
  Animated<double> leakScale;
  Animated<double> leakOpacity;
  std::optional<double> sparkStartDate;  // the scheduler's time, set while sparks fly

 private:
  void setOut();
  Task<> lateSteps();
  void leaveToRest();

  Scheduler& scheduler_;
  double restsAt_ = -1.0;
  TaskScope tasks_;
};

}  // namespace vorli

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

/// A radial gradient from the centre outwards; its stops are fractions of the radius.
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
  double rotationDegrees = 0.0;  // changes no pixel: the layer is round
};

/// The whole aurora at one moment, from back to front.
struct AuroraPicture {
  AuroraLayer warmCloud;
  AuroraLayer bloom;
  AuroraLayer leak;
  std::optional<WhiteSparkShower::Sparks> sparks;
};

/// The light behind the popover's ring: at rest a warm cloud in the ring's colour; after a polish the cloud
/// swells and fades, a white light leaks through, a cool bloom appears and sparks fly. Main thread.
class AuroraField {
 public:
  explicit AuroraField(Scheduler& scheduler);

  /// Call when the view appears: the cloud starts to rotate and never stops.
  void appear();

  /// Starts the sequence of a polish from its beginning. The late steps of a sequence that is still running
  /// are kept.
  void clearTriggered();

  AuroraPicture picture(double time, const Colour& stateColor, double calmIntensity,
                        Movement movement = Movement::kept) const;

  /// Time at which the sequence is over; the rotation, which is invisible, does not count.
  double restsAt() const { return restsAt_; }

 private:
  void setOut();
  Task<> lateSteps();
  void leaveToRest();

  Scheduler& scheduler_;
  Animated<double> rotation_;  // degrees
  Animated<double> warmScale_;
  Animated<double> warmOpacity_;
  Animated<double> warmBlur_;
  Animated<double> bloomScale_;
  Animated<double> bloomOpacity_;
  Animated<double> bloomBlur_;
  Animated<double> leakScale_;
  Animated<double> leakOpacity_;
  std::optional<double> sparkStartDate_;  // the scheduler's time, set while sparks fly
  double restsAt_ = -1.0;
  TaskScope tasks_;
};

}  // namespace vorli

#pragma once

#include "ambient/Movement.h"
#include "base/Animated.h"
#include "base/Scheduler.h"

#include <array>
#include <cstddef>
#include <vector>

namespace vorli {

/// The ring of small dots that answers a pointer resting on a calm ring. They appear one after the other and
/// disappear together. Lengths in points, y downwards. Main thread.
class DottedReassuranceRing {
 public:
  static constexpr std::size_t count = 12;
  static constexpr double radius = 15.0;
  static constexpr double dotSize = 2.2;  // diameter at scale 1
  static constexpr double perDotDelay = 0.024;

  /// One dot at one moment: its centre relative to the ring's, before `scale` is applied.
  struct Dot {
    double x = 0.0, y = 0.0;
    double opacity = 0.0;
    double scale = 1.0;

    bool operator==(const Dot&) const = default;
  };

  explicit DottedReassuranceRing(const Scheduler& clock);

  bool isVisible() const { return visible_; }
  /// Starts the motion; does nothing when the state is the same.
  void setVisible(bool visible);
  /// Like `setVisible`, without the motion.
  void jumpTo(bool visible);

  using Dots = std::array<Dot, count>;
  Dots dots(double time, Movement movement = Movement::kept) const;
  /// Scale of all dots together, about their common centre.
  double scale(double time, Movement movement = Movement::kept) const;

  double restsAt() const;

 private:
  bool visible_ = false;
  std::vector<Animated<double>> shares_;  // one for each dot: 0 hidden, 1 visible
  Animated<double> scale_;
};

}  // namespace vorli

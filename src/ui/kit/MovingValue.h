#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"

#include <functional>
#include <optional>

class QWidget;

namespace vorli::ui {

/// The curve of everything in the windows that moves or fades without a spring.
inline constexpr CubicBezier windowEaseOut{0.22, 0.9, 0.28, 1.0};
/// Length of every fade for a user who asked for less motion.
inline constexpr double reducedFadeSeconds = 0.12;
/// Time between two frames of a movement in the windows.
inline constexpr double windowFrameSeconds = 1.0 / 60.0;

/// A value that a widget shows and that moves when it is set. Requests frames only while it moves. Jumps in a
/// hidden widget, and in windows without motion. Main thread.
class MovingValue {
 public:
  /// Calls `changed` whenever the shown value has changed; without it, the widget is repainted.
  MovingValue(QWidget& widget, double value, std::function<void()> changed = {});
  ~MovingValue();
  MovingValue(const MovingValue&) = delete;
  MovingValue& operator=(const MovingValue&) = delete;

  /// Moves a place or a size; jumps if the user asked for less motion.
  void moveTo(double value, const Animation& animation);
  /// Fades an opacity or a colour, even if the user asked for less motion.
  void fadeTo(double value, double seconds);
  void jumpTo(double value);

  double shown() const { return moving_ ? moving_->shown() : target_; }
  double target() const { return target_; }

 private:
  void startMoving(double value, const Animation& animation, Scheduler& scheduler);
  void nextFrame();
  void frame();
  void stop();

  QWidget& widget_;
  const std::function<void()> changed_;
  double target_;
  Scheduler* scheduler_ = nullptr;          // set while it moves
  std::optional<Animated<double>> moving_;  // empty at rest
  Scheduler::TimerId timer_ = 0;
};

}  // namespace vorli::ui

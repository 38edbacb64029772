#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"

#include <functional>
#include <utility>

namespace vorli::ui {

/// The shown value of something that cannot move by itself, such as a sentence: the old value fades out, then
/// the new one fades in. Main thread.
template <typename T>
class FadedValue {
 public:
  static constexpr double outSeconds = 0.12, inSeconds = 0.18;

  /// `changed` is called when the shown value has been replaced.
  FadedValue(Scheduler& scheduler, std::function<void()> changed)
      : scheduler_(scheduler), changed_(std::move(changed)), opacity_(scheduler, 1.0) {}
  ~FadedValue() { scheduler_.cancel(exchange_); }
  FadedValue(const FadedValue&) = delete;
  FadedValue& operator=(const FadedValue&) = delete;

  const T& shown() const { return shown_; }
  const T& wanted() const { return wanted_; }
  double opacity(double time) const { return opacity_.shown(time); }
  double restsAt() const { return opacity_.restsAt(); }

  /// Shows `value` at once.
  void jumpTo(T value) {
    scheduler_.cancel(std::exchange(exchange_, 0));
    shown_ = wanted_ = std::move(value);
    withoutAnimation([this] { opacity_ = 1.0; });
  }

  /// `leaving` fades the old value out. One that is fading out already keeps its pace.
  void fadeTo(T value, const Animation& leaving = Animation::easeIn(outSeconds)) {
    if (value == wanted_) return;
    wanted_ = std::move(value);
    if (exchange_ != 0) return;
    withAnimation(leaving, [this] { opacity_ = 0.0; });
    exchange_ = scheduler_.after(leaving.activeSeconds(), [this] {
      exchange_ = 0;
      shown_ = wanted_;
      withAnimation(Animation::easeOut(inSeconds), [this] { opacity_ = 1.0; });
      changed_();
    });
  }

 private:
  Scheduler& scheduler_;
  std::function<void()> changed_;
  Animated<double> opacity_;
  T shown_{}, wanted_{};
  Scheduler::TimerId exchange_ = 0;
};

}  // namespace vorli::ui

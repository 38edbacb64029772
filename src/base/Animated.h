#pragma once

#include "base/Animation.h"
#include "base/Colour.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace vorli {

inline double mix(double from, double to, double share) {
  return from + (to - from) * share;
}
inline Colour mix(const Colour& from, const Colour& to, double share) {
  return {mix(from.red, to.red, share), mix(from.green, to.green, share), mix(from.blue, to.blue, share),
          mix(from.alpha, to.alpha, share)};
}

/// A model value whose shown value follows by animation. Setting it inside `withAnimation` adds a segment
/// that starts, after its delay, from whatever is shown by then; setting it outside drops all segments.
/// Several segments may wait one behind another. Main thread.
template <typename T>
class Animated {
 public:
  Animated(const Scheduler& clock, T initial) : clock_(clock), base_(initial), model_(initial) {}

  /// The value last set, wherever the shown one is.
  const T& model() const { return model_; }
  operator const T&() const { return model_; }

  Animated& operator=(T value) {
    const double now = clock_.now();
    if (const auto& animation = detail::currentAnimation()) {
      collapse(now);
      segments_.push_back({now + animation->delaySeconds, *animation, value});
      std::stable_sort(segments_.begin(), segments_.end(),
                       [](const Segment& a, const Segment& b) { return a.start < b.start; });
    } else {
      segments_.clear();
      base_ = value;
    }
    model_ = std::move(value);
    changed_.deliver(model_);
    return *this;
  }

  /// The value to show at time `t` of the clock, not before the last assignment.
  T shown(double t) const { return evaluate(t, segments_.size()); }
  T shown() const { return shown(clock_.now()); }

  /// True while a segment runs or waits at time `t`.
  bool isMoving(double t) const { return t < restsAt(); }

  /// The clock's time from which the shown value stays; in the past when it is at rest, infinite when a
  /// segment repeats for ever.
  double restsAt() const {
    double end = -1.0;
    for (const auto& segment : segments_)
      end = std::max(end, segment.start + segment.animation.activeSeconds());
    return end;
  }

  /// Called inside each assignment with the new model value.
  Subscription subscribe(std::function<void(const T&)> handler) const {
    return changed_.add(std::move(handler));
  }

 private:
  struct Segment {
    double start;
    Animation animation;
    T target;
  };

  // Value at `t` from the first `count` segments. A later segment takes over where the earlier one stands.
  T evaluate(double t, std::size_t count) const {
    if (count == 0) return base_;
    const Segment& segment = segments_[count - 1];
    if (t < segment.start) return evaluate(t, count - 1);
    const double elapsed = t - segment.start;
    if (elapsed >= segment.animation.activeSeconds()) return segment.target;
    const T from = evaluate(segment.start, count - 1);
    return mix(from, segment.target,
               segment.animation.progress(elapsed, startVelocity(segment, from, count)));
  }

  // A spring goes on with the speed that the value had; of a colour it does not keep it.
  double startVelocity(const Segment& segment, const T& from, std::size_t count) const {
    if constexpr (std::is_same_v<T, double>) {
      if (segment.animation.kind != Animation::Kind::spring) return 0.0;
      const double way = segment.target - from;
      if (way == 0.0) return 0.0;
      constexpr double step = 1e-4;
      return (from - evaluate(segment.start - step, count - 1)) / step / way;
    } else {
      return 0.0;
    }
  }

  // Forgets what has come to rest under a later, started segment, so the list stays short.
  void collapse(double now) {
    while (!segments_.empty() &&
           now >= segments_.front().start + segments_.front().animation.activeSeconds() &&
           (segments_.size() == 1 || segments_[1].start >= now)) {
      base_ = segments_.front().target;
      segments_.erase(segments_.begin());
    }
  }

  const Scheduler& clock_;
  T base_;
  T model_;
  std::vector<Segment> segments_;
  SubscriberList<T> changed_;
};

}  // namespace vorli

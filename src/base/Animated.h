#pragma once

#include "base/Animation.h"
#include "base/Colour.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <type_traits>
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
/// that starts, after its delay, from whatever is shown by then; a delayed one leaves the motion before it
/// alone until then, and one that waits for a later moment than a newer one starts is dropped. Setting it
/// outside drops all segments. It comes to rest on the value set last. Main thread.
template <typename T>
class Animated {
 public:
  Animated(const Scheduler& clock, T initial) : clock_(clock), base_(initial), model_(initial) {}

  /// The value last set, wherever the shown one is.
  const T& model() const { return model_; }
  operator const T&() const { return model_; }

  Animated& operator=(T value) {
    if (const auto& animation = detail::currentAnimation()) {
      const double now = clock_.now();
      const double start = now + std::max(animation->delaySeconds, 0.0);
      std::erase_if(segments_, [start](const Segment& waiting) { return waiting.start > start; });
      segments_.push_back({start, *animation, value, std::nullopt});
      forgetBefore(now);
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

  /// The clock's time from which the shown value stays; in the past when it is at rest, infinite when the
  /// last segment repeats for ever.
  double restsAt() const {
    return segments_.empty() ? -1.0 : segments_.back().start + segments_.back().animation.activeSeconds();
  }

  /// Called inside each assignment with the new model value.
  Subscription subscribe(std::function<void(const T&)> handler) const {
    return changed_.add(std::move(handler));
  }

 private:
  // Where a segment took over, and how fast the value moved there, in ways per second.
  struct Origin {
    T from;
    double velocity;
  };
  struct Segment {
    double start;
    Animation animation;
    T target;
    std::optional<Origin> origin;  // known once the segments before it are forgotten
  };

  // Value at `t` from the first `count` segments, which stand in order of their start. A later one takes over
  // where the earlier ones stand.
  T evaluate(double t, std::size_t count) const {
    if (count == 0) return base_;
    const Segment& segment = segments_[count - 1];
    if (t < segment.start) return evaluate(t, count - 1);
    const double elapsed = t - segment.start;
    if (elapsed >= segment.animation.activeSeconds()) return segment.target;
    const Origin origin = originOf(count - 1);
    return mix(origin.from, segment.target, segment.animation.progress(elapsed, origin.velocity));
  }

  Origin originOf(std::size_t index) const {
    const Segment& segment = segments_[index];
    if (segment.origin) return *segment.origin;
    const T from = evaluate(segment.start, index);
    return {from, startVelocity(segment, from, index)};
  }

  // A spring goes on with the speed that the value had; of a colour it does not keep it.
  double startVelocity(const Segment& segment, const T& from, std::size_t index) const {
    if constexpr (std::is_same_v<T, double>) {
      if (segment.animation.kind != Animation::Kind::spring) return 0.0;
      const double way = segment.target - from;
      if (way == 0.0) return 0.0;
      constexpr double step = 1e-4;
      return (from - evaluate(segment.start - step, index)) / step / way;
    } else {
      return 0.0;
    }
  }

  // Drops all segments before the one that rules at `now`, so that the list holds that one and those that
  // wait.
  void forgetBefore(double now) {
    std::size_t started = 0;
    while (started < segments_.size() && segments_[started].start <= now) ++started;
    if (started == 0) return;
    const std::size_t ruling = started - 1;
    segments_[ruling].origin = originOf(ruling);
    base_ = segments_[ruling].origin->from;
    segments_.erase(segments_.begin(), segments_.begin() + static_cast<std::ptrdiff_t>(ruling));
  }

  const Scheduler& clock_;
  T base_;
  T model_;
  std::vector<Segment> segments_;
  mutable SubscriberList<T> changed_;
};

}  // namespace vorli

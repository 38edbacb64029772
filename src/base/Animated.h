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
#include <utility>
#include <vector>

namespace vorli {

inline double mix(double from, double to, double share) {
  return from + (to - from) * share;
}
inline Colour mix(const Colour& from, const Colour& to, double share) {
  return {mix(from.red, to.red, share), mix(from.green, to.green, share), mix(from.blue, to.blue, share),
          mix(from.alpha, to.alpha, share)};
}

/// A model value whose shown value follows it by animation. Setting it inside `withAnimation` adds a segment
/// that starts after its delay, from the value shown at that time; until then, earlier motion continues. A
/// pending segment is dropped when a newer one starts before it. Setting the value outside `withAnimation`
/// drops all segments. The animation always ends at the value set last. Read-only; `Animated` and
/// `PublishedAnimated` have the assignment. Main thread.
template <typename T>
class AnimatedValue {
 public:
  AnimatedValue(const Scheduler& clock, T initial) : clock_(clock), base_(initial), model_(initial) {}

  /// The value set last, whatever is shown at the moment.
  const T& model() const { return model_; }
  operator const T&() const { return model_; }

  /// The value to show at the clock's time `t`, which must not be before the last assignment.
  T shown(double t) const { return evaluate(t, segments_.size()); }
  T shown() const { return shown(clock_.now()); }

  /// True when a segment is running or pending at time `t`.
  bool isMoving(double t) const { return t < restsAt(); }

  /// The clock's time after which the shown value does not change: in the past when it is at rest, infinite
  /// when the last segment repeats forever.
  double restsAt() const {
    return segments_.empty() ? -1.0 : segments_.back().start + segments_.back().animation.activeSeconds();
  }

  /// Called inside each assignment with the new model value.
  Subscription subscribe(std::function<void(const T&)> handler) const {
    return changed_.add(std::move(handler));
  }

 protected:
  void assign(T value) {
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
  }

 private:
  // The value at which a segment took over, and its velocity there: 1 is the segment's whole distance per
  // second.
  struct Origin {
    T from;
    double velocity;
  };
  struct Segment {
    double start;
    Animation animation;
    T target;
    std::optional<Origin> origin;  // known once the segments before it are dropped
  };

  // Value at `t` from the first `count` segments, which are sorted by start time. Each segment takes over at
  // the value that the earlier ones have reached.
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

  // A spring keeps the velocity that the value had, but not for colours.
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

  // Drops all segments before the one in effect at `now`, so that the list holds that one and the pending
  // ones.
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

/// An animated value that everybody who has it can set.
template <typename T>
class Animated : public AnimatedValue<T> {
 public:
  using AnimatedValue<T>::AnimatedValue;

  Animated& operator=(T value) {
    this->assign(std::move(value));
    return *this;
  }
};

/// An animated value that only `Owner` can set.
template <typename T, typename Owner>
class PublishedAnimated : public AnimatedValue<T> {
 public:
  using AnimatedValue<T>::AnimatedValue;

 private:
  friend Owner;
  friend class PublisherForTests;

  PublishedAnimated& operator=(T value) {
    this->assign(std::move(value));
    return *this;
  }
};

}  // namespace vorli

#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"

#include <functional>
#include <memory>
#include <utility>

namespace vorli {

/// A value that tells its subscribers: the current value on subscription, each new one on assignment, equal
/// or not. Main thread only.
template <typename T>
class Observable {
 public:
  using Value = T;
  using Handler = std::function<void(const T&)>;

  Observable() = default;
  explicit Observable(T value) : value_(std::move(value)) {}
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;

  const T& get() const { return value_; }
  operator const T&() const { return value_; }
  const T* operator->() const { return &value_; }

  Observable& operator=(T value) {
    value_ = std::move(value);
    subscribers_.deliver(value_);
    return *this;
  }

  /// Calls `handler` at once with the current value, then inside each assignment.
  Subscription subscribe(Handler handler) const {
    auto subscription = subscribers_.add(handler);
    handler(value_);
    return subscription;
  }

  /// As `subscribe`, but each call is put on the main loop: the handler sees the values of the finished tick.
  /// `handler` still gets the value that was assigned, even when a newer one stands by then. Nothing is
  /// delivered after the subscription has ended, not even what was already on its way.
  Subscription subscribeOnMainLoop(Scheduler& scheduler, Handler handler) const {
    // Only the subscription owns the handler, so what was posted finds it gone with its token.
    auto shared = std::make_shared<Handler>(std::move(handler));
    return subscribe([&scheduler, shared = std::move(shared)](const T& value) {
      scheduler.post([weak = std::weak_ptr<Handler>(shared), value] {
        if (const auto alive = weak.lock()) (*alive)(value);
      });
    });
  }

  /// As `subscribe`, without the value present at subscription.
  Subscription subscribeToChanges(Handler handler) const { return subscribers_.add(std::move(handler)); }

 private:
  T value_{};
  mutable SubscriberList<T> subscribers_;
};

}  // namespace vorli

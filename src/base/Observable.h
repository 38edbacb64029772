#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"

#include <functional>
#include <memory>
#include <utility>

namespace vorli {

/// A value that notifies its subscribers: with the current value on subscription, then on every assignment,
/// even of an equal value. Read-only; `Published` has the assignment. Main thread only.
template <typename T>
class Observable {
 public:
  using Value = T;
  using Handler = std::function<void(const T&)>;

  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;

  const T& get() const { return value_; }
  operator const T&() const { return value_; }
  const T* operator->() const { return &value_; }

  /// Calls `handler` immediately with the current value, then inside each assignment.
  Subscription subscribe(Handler handler) const {
    auto subscription = subscribers_.add(handler);
    handler(value_);
    return subscription;
  }

  /// Like `subscribe`, but each call is posted to the main loop, so the handler sees the values of the
  /// finished tick. `handler` receives the value that was assigned, even if it has been replaced in the
  /// meantime. Nothing is delivered after the subscription has ended, not even calls already posted.
  Subscription subscribeOnMainLoop(Scheduler& scheduler, Handler handler) const {
    // Only the subscription owns the handler, so posted calls find it destroyed once the token is.
    auto shared = std::make_shared<Handler>(std::move(handler));
    return subscribe([&scheduler, shared = std::move(shared)](const T& value) {
      scheduler.post([weak = std::weak_ptr<Handler>(shared), value] {
        if (const auto alive = weak.lock()) (*alive)(value);
      });
    });
  }

  /// Like `subscribe`, but without the initial call.
  Subscription subscribeToChanges(Handler handler) const { return subscribers_.add(std::move(handler)); }

 protected:
  Observable() = default;
  explicit Observable(T value) : value_(std::move(value)) {}
  ~Observable() = default;

  void assign(T value) {
    value_ = std::move(value);
    subscribers_.deliver(value_);
  }

 private:
  T value_{};
  mutable SubscriberList<T> subscribers_;
};

}  // namespace vorli

#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "base/Task.h"

#include <memory>
#include <optional>
#include <utility>

namespace vorli {

/// One reply that a flow awaits without a deadline. Hand out `reply()` once, then await the object. If the
/// reply is dropped unanswered, the flow waits until its owner is destroyed. The answer may come from any
/// thread; everything else runs on the main thread.
template <typename T>
class AwaitedReply {
 public:
  explicit AwaitedReply(Scheduler& scheduler) : state_(std::make_shared<State>(scheduler)) {}

  OnceReply<T> reply() {
    return OnceReply<T>([state = state_](T value) {
      auto& scheduler = state->scheduler;
      scheduler.post([state, value = std::move(value)]() mutable {
        state->result = std::move(value);
        std::exchange(state->waiter, Resumption()).resume();
      });
    });
  }

  bool await_ready() const { return state_->result.has_value(); }
  template <typename Promise>
  void await_suspend(std::coroutine_handle<Promise> handle) {
    state_->waiter = Resumption(handle);
  }
  T await_resume() { return std::move(*state_->result); }

 private:
  struct State {
    explicit State(Scheduler& scheduler) : scheduler(scheduler) {}

    Scheduler& scheduler;
    std::optional<T> result;
    Resumption waiter;
  };

  std::shared_ptr<State> state_;
};

}  // namespace vorli

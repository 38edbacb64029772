#pragma once

#include "base/OnceReply.h"
#include "base/ResumeState.h"
#include "base/Scheduler.h"
#include "base/Task.h"

#include <memory>
#include <optional>
#include <utility>

namespace vorli {

/// A race between one reply and one deadline: exactly one of them wins, and the other has no effect. The
/// deadline counts from construction. Hand out `reply()` once, then await the race: it returns the answer, or
/// nothing when the deadline passed first. The answer may come from any thread; everything else runs on the
/// main thread.
template <typename T>
class DeadlineRace {
 public:
  DeadlineRace(Scheduler& scheduler, double seconds) : state_(std::make_shared<State>(scheduler)) {
    state_->timer = scheduler.after(seconds, [state = state_] {
      if (state->once.claim()) state->settle(std::nullopt);
    });
  }

  OnceReply<T> reply() {
    return OnceReply<T>([state = state_](T value) {
      if (!state->once.claim()) return;
      auto& scheduler = state->scheduler;
      scheduler.post([state, value = std::move(value)]() mutable {
        state->scheduler.cancel(state->timer);
        state->settle(std::move(value));
      });
    });
  }

  bool await_ready() const { return state_->settled; }
  template <typename Promise>
  void await_suspend(std::coroutine_handle<Promise> handle) {
    state_->waiter = Resumption(handle);
  }
  std::optional<T> await_resume() { return std::move(state_->result); }

 private:
  struct State {
    explicit State(Scheduler& scheduler) : scheduler(scheduler) {}

    void settle(std::optional<T> value) {
      result = std::move(value);
      settled = true;
      std::exchange(waiter, Resumption()).resume();
    }

    Scheduler& scheduler;
    ResumeState once;
    Scheduler::TimerId timer = 0;
    std::optional<T> result;
    bool settled = false;
    Resumption waiter;
  };

  std::shared_ptr<State> state_;
};

}  // namespace vorli

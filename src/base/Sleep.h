#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"

#include <memory>

namespace vorli {

enum class SleepResult { elapsed, cancelled };

namespace detail {

class SleepAwaiter {
 public:
  SleepAwaiter(Scheduler& scheduler, double seconds) : scheduler_(scheduler), seconds_(seconds) {}
  ~SleepAwaiter() {
    if (timer_ != 0) scheduler_.cancel(timer_);  // the flow was destroyed while asleep
  }
  SleepAwaiter(const SleepAwaiter&) = delete;
  SleepAwaiter& operator=(const SleepAwaiter&) = delete;

  bool await_ready() const noexcept { return false; }

  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> handle) {
    context_ = handle.promise().context;
    if (context_->isCancelled()) return false;

    auto resumption = std::make_shared<Resumption>(handle);
    timer_ = scheduler_.after(seconds_, [resumption] { resumption->resume(); });
    context_->setCancelHandler(
        [&scheduler = scheduler_, timer = timer_, weak = std::weak_ptr<Resumption>(resumption)] {
          const auto sleeper = weak.lock();
          if (!sleeper) return;
          scheduler.cancel(timer);
          scheduler.post([sleeper] { sleeper->resume(); });
        });
    return true;
  }

  SleepResult await_resume() {
    timer_ = 0;
    return context_->isCancelled() ? SleepResult::cancelled : SleepResult::elapsed;
  }

 private:
  Scheduler& scheduler_;
  const double seconds_;
  TaskContext* context_ = nullptr;
  Scheduler::TimerId timer_ = 0;
};

struct CancellationAwaiter {
  TaskContext* context = nullptr;
  bool await_ready() const noexcept { return false; }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> handle) {
    context = handle.promise().context;
    return false;
  }
  bool await_resume() const { return context->isCancelled(); }
};

}  // namespace detail

/// Suspends the flow for `seconds`. Cancelling the flow ends its sleep at once and the flow continues; check
/// the result to stop instead.
[[nodiscard]] inline detail::SleepAwaiter sleepFor(Scheduler& scheduler, double seconds) {
  return {scheduler, seconds};
}

/// `co_await isCancelled()` returns, without suspending, whether this flow was cancelled. Not allowed inside
/// a condition: see Task.
[[nodiscard]] inline detail::CancellationAwaiter isCancelled() {
  return {};
}

}  // namespace vorli

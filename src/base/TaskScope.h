#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"

#include <memory>
#include <vector>

namespace vorli {

/// Refers to a spawned flow. An empty handle behaves like that of a finished flow.
class TaskHandle {
 public:
  TaskHandle() = default;
  explicit TaskHandle(std::weak_ptr<TaskContext> context) : context_(std::move(context)) {}

  /// True until the flow has finished or was destroyed.
  bool isRunning() const {
    const auto context = context_.lock();
    return context && !context->hasEnded();
  }

  void cancel() const {
    if (const auto context = context_.lock()) context->cancel();
  }

  /// Suspends the awaiting flow until this one has finished; does not suspend if it already has. When this
  /// flow's scope is destroyed first, the awaiting flow is destroyed too.
  auto finished() const { return FinishedAwaiter{context_.lock()}; }

 private:
  struct FinishedAwaiter {
    std::shared_ptr<TaskContext> context;

    bool await_ready() const { return !context || context->hasEnded(); }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> handle) {
      auto resumption = std::make_shared<Resumption>(handle);
      const auto awaited = std::exchange(context, nullptr);
      awaited->onFinished([resumption] { resumption->resume(); });
    }
    void await_resume() const {}
  };

  std::weak_ptr<TaskContext> context_;
};

/// Owns the flows of one object. Destroying the scope destroys its suspended flows, so a flow may use its
/// owner freely. Declare it as the owner's last member. Main thread.
class TaskScope {
 public:
  explicit TaskScope(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~TaskScope();
  TaskScope(const TaskScope&) = delete;
  TaskScope& operator=(const TaskScope&) = delete;

  /// Starts the flow at the next turn of the main loop.
  TaskHandle spawn(Task<void> flow);

 private:
  Scheduler& scheduler_;
  std::vector<std::weak_ptr<TaskContext>> contexts_;
};

}  // namespace vorli

#pragma once

#include "base/UniqueFunction.h"

#include <coroutine>
#include <memory>
#include <vector>

namespace vorli {

/// The state that a spawned flow and everything it awaits share: whether it is cancelled, who waits for its
/// end, and the one frame that owns all others. Main thread.
class TaskContext : public std::enable_shared_from_this<TaskContext> {
 public:
  TaskContext() = default;
  ~TaskContext();
  TaskContext(const TaskContext&) = delete;
  TaskContext& operator=(const TaskContext&) = delete;

  bool isCancelled() const { return cancelled_; }
  /// True once the flow has run to its end, or is no more to go on.
  bool hasEnded() const { return finished_ || abandoned_; }

  /// Marks the flow cancelled and wakes the sleep that it is in. The flow itself goes on, and decides what to
  /// do.
  void cancel();

  /// Destroys the flow where it stands, or at its next suspension when it is the one running.
  void abandon();

  /// Called once when the flow ends by itself, before its frame is destroyed; at once if it has. Dropped
  /// uncalled when the flow is abandoned.
  void onFinished(UniqueFunction<void()> callback);

  /// For a sleep: what `cancel` has to do to end it early. Replaced by each sleep.
  void setCancelHandler(UniqueFunction<void()> wake) { wakeSleep_ = std::move(wake); }

  void adoptRoot(std::coroutine_handle<> root) { root_ = root; }
  void resume(std::coroutine_handle<> handle);
  void rootFinished() { finished_ = true; }

 private:
  void destroyRoot();

  std::coroutine_handle<> root_;
  UniqueFunction<void()> wakeSleep_;
  std::vector<UniqueFunction<void()>> finishedCallbacks_;
  bool cancelled_ = false;
  bool finished_ = false;
  bool abandoned_ = false;
  bool running_ = false;
};

}  // namespace vorli

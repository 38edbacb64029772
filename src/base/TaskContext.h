#pragma once

#include "base/UniqueFunction.h"

#include <coroutine>
#include <memory>
#include <vector>

namespace vorli {

/// State shared by a spawned flow and every flow that it awaits: whether it is cancelled, the callbacks for
/// its end, and the frame that owns all others. Main thread.
class TaskContext : public std::enable_shared_from_this<TaskContext> {
 public:
  TaskContext() = default;
  ~TaskContext();
  TaskContext(const TaskContext&) = delete;
  TaskContext& operator=(const TaskContext&) = delete;

  bool isCancelled() const { return cancelled_; }
  /// True once the flow has finished or was abandoned.
  bool hasEnded() const { return finished_ || abandoned_; }

  /// Marks the flow as cancelled and ends its current sleep. The flow continues and decides what to do.
  void cancel();

  /// Destroys the flow where it is suspended, or at its next suspension if it is running now.
  void abandon();

  /// Calls `callback` once when the flow finishes, before its frame is destroyed; immediately if it has
  /// already finished. The callback is dropped when the flow is abandoned.
  void onFinished(UniqueFunction<void()> callback);

  /// Used by a sleep: sets the function by which `cancel` ends it early. Each sleep replaces it.
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

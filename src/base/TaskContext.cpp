#include "base/TaskContext.h"

#include <utility>

namespace vorli {

TaskContext::~TaskContext() {
  destroyRoot();
}

void TaskContext::cancel() {
  cancelled_ = true;
  if (auto wake = std::exchange(wakeSleep_, nullptr)) wake();
}

void TaskContext::abandon() {
  abandoned_ = true;
  if (!running_) destroyRoot();
}

void TaskContext::onFinished(UniqueFunction<void()> callback) {
  if (finished_) {
    callback();
  } else {
    finishedCallbacks_.push_back(std::move(callback));
  }
}

void TaskContext::resume(std::coroutine_handle<> handle) {
  if (abandoned_ || finished_) return;
  VORLI_ASSERT(!running_);
  running_ = true;
  handle.resume();
  running_ = false;
  if (finished_) {
    for (auto& callback : std::exchange(finishedCallbacks_, {})) callback();
  }
  if (finished_ || abandoned_) destroyRoot();
}

void TaskContext::destroyRoot() {
  wakeSleep_ = nullptr;
  if (auto root = std::exchange(root_, {})) root.destroy();
}

}  // namespace vorli

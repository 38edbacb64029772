#pragma once

#include <cstddef>

namespace vorli::posix {

/// A second stack for the signal handlers of the calling thread, used when its own stack has overflowed. Must
/// be destroyed on the thread that created it. If no memory is available, handlers use the thread's own
/// stack.
class AlternateStack {
 public:
  AlternateStack();
  ~AlternateStack();
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

 private:
  void* memory_ = nullptr;  // an unreadable page, then the stack
  std::size_t bytes_ = 0;
};

}  // namespace vorli::posix

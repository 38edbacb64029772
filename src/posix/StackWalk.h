#pragma once

#include "posix/CrashHost.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vorli::posix {

/// The calling thread's stack, innermost frame first, read without heap allocation or locks. The walk of a
/// damaged stack may fault; frames found before the fault are kept.
class StackWalk {
 public:
  /// Walks this thread's own stack from the frame at `start`, or from the caller's frame if `start` is 0.
  /// Finds nothing when no frame is at `start`.
  void walk(std::uintptr_t start);

  void clear() { count_ = 0; }
  void add(StackFrame frame);
  /// Drops frames from the front while `isUnwanted` is true for them; keeps all if it is true for all.
  template <typename Condition>
  void dropFrontWhile(Condition isUnwanted) {
    std::size_t first = 0;
    while (first < count_ && isUnwanted(frames_[first])) ++first;
    if (first == count_) return;
    for (std::size_t i = first; i < count_; ++i) frames_[i - first] = frames_[i];
    count_ -= first;
  }

  std::span<const StackFrame> frames() const { return {frames_.data(), count_}; }

 private:
  std::array<StackFrame, 64> frames_;
  std::size_t count_ = 0;
};

}  // namespace vorli::posix

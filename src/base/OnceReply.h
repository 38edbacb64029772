#pragma once

#include "base/UniqueFunction.h"

#include <utility>

namespace vorli {

/// The right to answer a request once. Answering consumes it: an accidental second answer does not compile,
/// and a forced one does nothing. Dropping it unanswered notifies nobody.
template <typename T>
class [[nodiscard]] OnceReply {
 public:
  OnceReply() = default;
  explicit OnceReply(UniqueFunction<void(T)> answer) : answer_(std::move(answer)) {}
  OnceReply(OnceReply&& other) noexcept : answer_(std::exchange(other.answer_, nullptr)) {}
  OnceReply& operator=(OnceReply&& other) noexcept {
    answer_ = std::exchange(other.answer_, nullptr);
    return *this;
  }

  void operator()(T value) && {
    if (auto answer = std::exchange(answer_, nullptr)) answer(std::move(value));
  }

 private:
  UniqueFunction<void(T)> answer_;
};

}  // namespace vorli

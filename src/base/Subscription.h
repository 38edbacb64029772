#pragma once

#include "base/UniqueFunction.h"

#include <utility>

namespace vorli {

/// A token that keeps one subscriber registered. Destroy it, assign over it or call `cancel` to end the
/// subscription. It may outlive the source.
class [[nodiscard]] Subscription {
 public:
  Subscription() = default;
  explicit Subscription(UniqueFunction<void()> cancel) : cancel_(std::move(cancel)) {}
  ~Subscription() { cancel(); }

  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      cancel();
      cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
  }

  void cancel() {
    if (auto end = std::exchange(cancel_, nullptr)) end();
  }

 private:
  UniqueFunction<void()> cancel_;
};

}  // namespace vorli

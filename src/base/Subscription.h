#pragma once

#include "base/UniqueFunction.h"

#include <utility>
#include <vector>

namespace vorli {

/// Keeps one subscriber registered. The subscription ends with the token: destroy it, assign over it or call
/// `cancel`. It may outlive what it was made from.
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

  /// Lets the subscription live for the rest of the process, as an observer whose token nobody keeps.
  void detach() {
    // Kept and not dropped: the function may own what the subscription consists of.
    static auto& detached = *new std::vector<UniqueFunction<void()>>;
    if (cancel_) detached.push_back(std::exchange(cancel_, nullptr));
  }

 private:
  UniqueFunction<void()> cancel_;
};

}  // namespace vorli

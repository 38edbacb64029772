#pragma once

#include "ports/KeyMonitor.h"

#include <utility>

namespace vorli::fakes {

/// A keyboard that a test types on.
class KeyMonitor final : public ports::KeyMonitor {
 public:
  enum class Reached { monitor, controls };

  int monitors = 0;  // now in place

  /// Presses the key and returns its receiver.
  Reached press(const ports::KeyDown& key) {
    const auto handler = handler_;
    if (!handler) return Reached::controls;
    handler(key);
    return Reached::monitor;
  }

  Subscription addLocalKeyDownMonitor(std::function<void(const ports::KeyDown&)> handler) override {
    handler_ = std::move(handler);
    ++monitors;
    return Subscription([this] {
      handler_ = nullptr;
      --monitors;
    });
  }

 private:
  std::function<void(const ports::KeyDown&)> handler_;
};

}  // namespace vorli::fakes

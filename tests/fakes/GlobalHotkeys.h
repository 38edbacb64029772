#pragma once

#include "ports/GlobalHotkeys.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// Global keys that a test presses. None is refused unless the test says so.
class GlobalHotkeys final : public ports::GlobalHotkeys {
 public:
  struct Registration {
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    ports::HotkeyIdentifier identifier;
    bool operator==(const Registration&) const = default;
  };

  std::int32_t status = 0;
  std::vector<Registration> registrations;
  /// The calls, in order.
  std::vector<std::string> calls;
  bool isRegistered = false;

  /// Presses the key even if it is not registered: an event may still be queued when its registration ends.
  void press() {
    if (pressed_) pressed_();
  }
  /// Makes a registered key stop working with this error, or work again if it is 0.
  void changeLater(std::int32_t code) {
    if (changed_) changed_(code);
  }

  Subscription installEventHandler(std::function<void()> pressed) override {
    calls.emplace_back("install handler");
    pressed_ = std::move(pressed);
    return Subscription([this] {
      calls.emplace_back("remove handler");
      pressed_ = nullptr;
    });
  }

  std::expected<Subscription, std::int32_t> registerEventHotKey(std::uint32_t keyCode,
                                                                std::uint32_t modifiers,
                                                                ports::HotkeyIdentifier identifier) override {
    calls.emplace_back("register");
    registrations.push_back({keyCode, modifiers, identifier});
    if (status != 0) return std::unexpected(status);
    isRegistered = true;
    return Subscription([this] {
      calls.emplace_back("unregister");
      isRegistered = false;
    });
  }

  void setStatusHandler(std::function<void(std::int32_t)> changed) override { changed_ = std::move(changed); }

 private:
  std::function<void()> pressed_;
  std::function<void(std::int32_t)> changed_;
};

}  // namespace vorli::fakes

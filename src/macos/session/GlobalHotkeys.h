#pragma once

#include "base/Scheduler.h"
#include "ports/GlobalHotkeys.h"

namespace vorli::machost {

/// Hot keys of the Carbon event manager. A successful registration stays valid.
class GlobalHotkeys final : public ports::GlobalHotkeys {
 public:
  explicit GlobalHotkeys(Scheduler& scheduler) : scheduler_(scheduler) {}

  Subscription installEventHandler(std::function<void()> pressed) override;
  [[nodiscard]] std::expected<Subscription, std::int32_t> registerEventHotKey(
      std::uint32_t keyCode, std::uint32_t modifiers, ports::HotkeyIdentifier identifier) override;
  /// Does nothing: the system reports no changes.
  void setStatusHandler(std::function<void(std::int32_t)> changed) override;

 private:
  Scheduler& scheduler_;
};

}  // namespace vorli::machost

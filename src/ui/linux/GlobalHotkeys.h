#pragma once

#include "base/Scheduler.h"
#include "ports/GlobalHotkeys.h"
#include "ui/linux/ShortcutsPortal.h"
#include "ui/linux/X11HotkeyGrab.h"

#include <QDBusConnection>
#include <cstdint>
#include <functional>
#include <memory>

namespace vorli::ui {

/// Global hotkeys: a grab on X11, the desktop portal in a Wayland session, where a grab would work only while
/// an X11 window has the focus.
class GlobalHotkeys final : public ports::GlobalHotkeys {
 public:
  enum class Session { x11, wayland };
  static Session thisSession();

  GlobalHotkeys(Scheduler& scheduler, QDBusConnection sessionBus, Session session);

  Subscription installEventHandler(std::function<void()> pressed) override;
  [[nodiscard]] std::expected<Subscription, std::int32_t> registerEventHotKey(
      std::uint32_t keyCode, std::uint32_t modifiers, ports::HotkeyIdentifier identifier) override;
  void setStatusHandler(std::function<void(std::int32_t)> changed) override;

 private:
  struct Handlers {
    std::function<void()> pressed;
    std::function<void(std::int32_t)> changed;
  };

  const Session session_;
  std::shared_ptr<Handlers> handlers_ = std::make_shared<Handlers>();
  std::shared_ptr<X11HotkeyGrab> grab_;
  std::shared_ptr<ShortcutsPortal> portal_;
};

}  // namespace vorli::ui

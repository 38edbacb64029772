#include "ui/linux/GlobalHotkeys.h"

#include <cstdlib>
#include <utility>

namespace vorli::ui {

GlobalHotkeys::Session GlobalHotkeys::thisSession() {
  const char* const display = std::getenv("WAYLAND_DISPLAY");
  return display && *display ? Session::wayland : Session::x11;
}

GlobalHotkeys::GlobalHotkeys(Scheduler& scheduler, QDBusConnection sessionBus, Session session)
    : session_(session) {
  const auto pressed = [handlers = handlers_] {
    if (handlers->pressed) handlers->pressed();
  };
  const auto changed = [handlers = handlers_](std::int32_t status) {
    if (handlers->changed) handlers->changed(status);
  };
  if (session_ == Session::x11)
    grab_ = std::make_shared<X11HotkeyGrab>(scheduler, pressed, changed);
  else
    portal_ = std::make_shared<ShortcutsPortal>(std::move(sessionBus), pressed, changed);
}

Subscription GlobalHotkeys::installEventHandler(std::function<void()> pressed) {
  handlers_->pressed = std::move(pressed);
  return Subscription([handlers = handlers_] { handlers->pressed = nullptr; });
}

std::expected<Subscription, std::int32_t> GlobalHotkeys::registerEventHotKey(std::uint32_t keyCode,
                                                                             std::uint32_t modifiers,
                                                                             ports::HotkeyIdentifier) {
  if (portal_) {
    portal_->bind(keyCode, modifiers);
    return Subscription([portal = portal_] { portal->release(); });
  }
  if (const auto status = grab_->grab(keyCode, modifiers); status != 0) return std::unexpected(status);
  return Subscription([grab = grab_] { grab->release(); });
}

void GlobalHotkeys::setStatusHandler(std::function<void(std::int32_t)> changed) {
  handlers_->changed = std::move(changed);
}

}  // namespace vorli::ui

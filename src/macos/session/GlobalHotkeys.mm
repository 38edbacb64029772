#include "macos/session/GlobalHotkeys.h"

#include <Carbon/Carbon.h>
#include <memory>
#include <utility>

namespace vorli::machost {

namespace {

struct PressListener {
  Scheduler& scheduler;
  std::shared_ptr<const std::function<void()>> pressed;
};

// Only queues the work, because the event manager waits for the return.
OSStatus handlePress(EventHandlerCallRef, EventRef, void* userData) {
  const auto& listener = *static_cast<const PressListener*>(userData);
  listener.scheduler.post([pressed = std::weak_ptr(listener.pressed)] {
    if (const auto handler = pressed.lock()) (*handler)();
  });
  return noErr;
}

}  // namespace

Subscription GlobalHotkeys::installEventHandler(std::function<void()> pressed) {
  auto listener = std::make_unique<PressListener>(
      PressListener{scheduler_, std::make_shared<const std::function<void()>>(std::move(pressed))});
  const EventTypeSpec press{kEventClassKeyboard, kEventHotKeyPressed};
  EventHandlerRef handler = nullptr;
  if (InstallEventHandler(GetApplicationEventTarget(), handlePress, 1, &press, listener.get(), &handler) !=
      noErr)
    return {};
  return Subscription([handler, listener = std::move(listener)] { RemoveEventHandler(handler); });
}

std::expected<Subscription, std::int32_t> GlobalHotkeys::registerEventHotKey(
    std::uint32_t keyCode, std::uint32_t modifiers, ports::HotkeyIdentifier identifier) {
  const EventHotKeyID name{identifier.signature, identifier.id};
  EventHotKeyRef key = nullptr;
  const OSStatus status = RegisterEventHotKey(keyCode, modifiers, name, GetApplicationEventTarget(), 0, &key);
  if (status != noErr) return std::unexpected(status);
  return Subscription([key] { UnregisterEventHotKey(key); });
}

void GlobalHotkeys::setStatusHandler(std::function<void(std::int32_t)>) {}

}  // namespace vorli::machost

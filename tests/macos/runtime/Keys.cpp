#include "tests/macos/runtime/Keys.h"

#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

static State<Keys> keysState;

Keys& keys() {
  return *keysState;
}

void Keys::press() {
  if (handler) handler(nullptr, nullptr, userData);
}

}  // namespace vorli::macfake

using vorli::macfake::keys;

struct OpaqueEventHandlerRef {};
struct OpaqueEventHotKeyRef {};
struct OpaqueEventTargetRef {};

static OpaqueEventHandlerRef onlyHandler;
static OpaqueEventHotKeyRef onlyKey;
static OpaqueEventTargetRef applicationTarget;

EventTargetRef GetApplicationEventTarget() {
  return &applicationTarget;
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* installed) {
  keys().calls.push_back("install " + std::to_string(typeCount) + " " + std::to_string(types->eventClass) +
                         " " + std::to_string(types->eventKind) +
                         (target == &applicationTarget ? "" : " elsewhere"));
  if (keys().installStatus != noErr) return keys().installStatus;
  keys().handler = handler;
  keys().userData = userData;
  *installed = &onlyHandler;
  return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef handler) {
  keys().calls.push_back(handler == &onlyHandler ? "remove" : "remove unknown");
  keys().handler = nullptr;
  return noErr;
}

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID identifier,
                             EventTargetRef target, OptionBits options, EventHotKeyRef* registered) {
  keys().calls.push_back("register " + std::to_string(keyCode) + " " + std::to_string(modifiers) + " " +
                         std::to_string(identifier.signature) + " " + std::to_string(identifier.id) + " " +
                         std::to_string(options) + (target == &applicationTarget ? "" : " elsewhere"));
  if (keys().registerStatus != noErr) return keys().registerStatus;
  *registered = &onlyKey;
  return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef key) {
  keys().calls.push_back(key == &onlyKey ? "unregister" : "unregister unknown");
  return noErr;
}

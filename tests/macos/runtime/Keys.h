#pragma once

#include <Carbon/Carbon.h>
#include <string>
#include <vector>

namespace vorli::macfake {

/// Hot keys of the event manager.
struct Keys {
  OSStatus installStatus = noErr;
  OSStatus registerStatus = noErr;
  EventHandlerUPP handler = nullptr;
  void* userData = nullptr;
  std::vector<std::string> calls;

  /// Presses the registered key.
  void press();
};

Keys& keys();

}  // namespace vorli::macfake

#include "macos/session/KeyMonitor.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <utility>

namespace vorli::machost {

namespace {

// Characters that need two units of UTF-16 are on no keyboard.
bool beginsWithLetterOrNumber(NSString* text) {
  return text.length > 0 &&
         [NSCharacterSet.alphanumericCharacterSet characterIsMember:[text characterAtIndex:0]];
}

ports::KeyDown keyDownOf(NSEvent* event) {
  NSString* const characters = event.charactersIgnoringModifiers;
  return {.keyCode = event.keyCode,
          .modifierFlags = event.modifierFlags,
          .charactersIgnoringModifiers = textOf(characters),
          .beginsWithLetterOrNumber = beginsWithLetterOrNumber(characters)};
}

}  // namespace

Subscription KeyMonitor::addLocalKeyDownMonitor(std::function<void(const ports::KeyDown&)> handler) {
  const auto pressed = std::make_shared<std::function<void(const ports::KeyDown&)>>(std::move(handler));
  NSEvent* (^const swallow)(NSEvent*) = ^NSEvent*(NSEvent* event) {
    const auto kept = pressed;  // the handler may end this monitor
    (*kept)(keyDownOf(event));
    return nil;  // nobody else gets the key
  };
  const id monitor = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown handler:swallow];
  if (!monitor) return {};
  return Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
}

}  // namespace vorli::machost

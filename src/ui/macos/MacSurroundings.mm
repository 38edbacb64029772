#include "ui/macos/MacSurroundings.h"

#include "ui/macos/NativeWindow.h"
#include "ui/macos/SystemAppearance.h"

#import <AppKit/AppKit.h>
#include <QMargins>
#include <QWindow>
#include <utility>

namespace vorli::ui {

Appearance MacSurroundings::appearance() const {
  return isSystemDark() ? Appearance::dark : Appearance::light;
}

Subscription MacSurroundings::subscribeToAppearance(std::function<void()> handler) const {
  return subscribeToSystemAppearance(std::move(handler));
}

// The program paints the shadow itself; the system would add its own around it.
void MacSurroundings::setShadowMargins(QWindow& window, const QMargins&) const {
  nativeWindow(window).hasShadow = NO;
}

// A program without a place in the Dock gets no keyboard before it is active.
void MacSurroundings::bringToFront(QWindow& window) const {
  [NSApp activateIgnoringOtherApps:YES];
  window.raise();
  window.requestActivate();
  [nativeWindow(window) makeKeyAndOrderFront:nil];
}

}  // namespace vorli::ui

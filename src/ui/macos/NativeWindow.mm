#include "ui/macos/NativeWindow.h"

#import <AppKit/AppKit.h>
#include <QWindow>

namespace vorli::ui {

// Uses Qt's identifier of a window, which is its view on this system.
NSWindow* nativeWindow(QWindow& window) {
  return ((__bridge NSView*)reinterpret_cast<void*>(window.winId())).window;
}

}  // namespace vorli::ui

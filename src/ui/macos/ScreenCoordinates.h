#pragma once

#include "ports/GlowOverlay.h"

#import <AppKit/AppKit.h>

namespace vorli::ui {

// AppKit counts from the lower left corner of the first screen upwards; everything else here counts from its
// upper left corner downwards.

/// Returns the height of the screen that is the origin of all coordinates; 0 without a screen.
inline double firstScreenHeight() {
  NSScreen* const first = NSScreen.screens.firstObject;
  return first ? first.frame.size.height : 0.0;
}

inline ports::ScreenFrame downwards(const NSRect& frame) {
  return {frame.origin.x, firstScreenHeight() - frame.origin.y - frame.size.height, frame.size.width,
          frame.size.height};
}

inline NSRect upwards(const ports::ScreenFrame& frame) {
  return {{frame.x, firstScreenHeight() - frame.y - frame.height}, {frame.width, frame.height}};
}

}  // namespace vorli::ui

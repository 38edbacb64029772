#pragma once

#include "ui/kit/WindowSurroundings.h"

namespace vorli::ui {

/// Tells the desktop when a window has been destroyed. The first base of the window, so that it is destroyed
/// last, after the widget with its content; Qt's own signal comes before the content is destroyed.
class WindowEnd {
 public:
  explicit WindowEnd(const WindowSurroundings& desktop) : desktop_(desktop) {}
  ~WindowEnd() { desktop_.windowDestroyed(); }
  WindowEnd(const WindowEnd&) = delete;
  WindowEnd& operator=(const WindowEnd&) = delete;

 private:
  const WindowSurroundings& desktop_;
};

}  // namespace vorli::ui

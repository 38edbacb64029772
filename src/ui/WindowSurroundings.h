#pragma once

#include "ui/WindowPalette.h"

class QMargins;
class QWindow;

namespace vorli::ui {

/// What lies behind a window that is not rectangular: without a compositor, nothing shines through.
enum class Compositing { absent, present };

/// The desktop that a window of the program's own drawing opens on. Main thread.
class WindowSurroundings {
 public:
  virtual ~WindowSurroundings() = default;

  virtual Appearance appearance() const = 0;
  virtual Compositing compositing() const = 0;

  /// Tells the window manager that `shadow` around the window is not part of its visible frame. Before the
  /// window is shown.
  virtual void setShadowMargins(QWindow& window, const QMargins& shadow) const = 0;

  /// Brings the window to the front and gives it the keyboard, whichever program has it.
  virtual void bringToFront(QWindow& window) const = 0;
};

}  // namespace vorli::ui

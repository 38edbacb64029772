#pragma once

#include "base/Subscription.h"
#include "ui/kit/WindowPalette.h"

#include <functional>

namespace vorli {
class Scheduler;
namespace ports {
class MotionPreference;
}
}  // namespace vorli

class QMargins;
class QWindow;

namespace vorli::ui {

/// Whether a compositor shows the desktop through the transparent parts of a window.
enum class Compositing { absent, present };

/// The side on which the desktop's own windows have their close button.
enum class CloseButtonSide { left, right };

/// Dependencies of the moving parts of a window: the time, and whether the user wants movement.
struct WindowMotion {
  Scheduler& scheduler;
  const ports::MotionPreference& preference;
};

/// The desktop as seen by the windows that draw their own frame. Main thread.
class WindowSurroundings {
 public:
  virtual ~WindowSurroundings() = default;

  virtual Appearance appearance() const = 0;
  /// `handler` runs when `appearance` has changed.
  [[nodiscard]] virtual Subscription subscribeToAppearance(std::function<void()> handler) const = 0;
  virtual Compositing compositing() const = 0;
  virtual CloseButtonSide closeButtonSide() const = 0;

  /// Null where nothing moves in windows.
  virtual const WindowMotion* movement() const { return nullptr; }

  /// Tells the window manager that `shadow` around the window is not part of its visible frame. Must be
  /// called before the window is shown.
  virtual void setShadowMargins(QWindow& window, const QMargins& shadow) const = 0;

  /// Brings the window to the front and gives it the keyboard focus, whichever program has it.
  virtual void bringToFront(QWindow& window) const = 0;

  /// Whether the window is on the workspace that the user sees, perhaps behind other windows. True where
  /// that is not known.
  virtual bool isOnCurrentWorkspace(QWindow&) const { return true; }

  /// Called after a window and its content have been destroyed. A desktop whose allocator keeps freed memory
  /// returns it to the system here.
  virtual void windowDestroyed() const {}
};

}  // namespace vorli::ui

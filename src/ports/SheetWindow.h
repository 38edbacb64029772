#pragma once

#include <functional>
#include <string>

namespace vorli::ports {

/// A window around one sheet, such as a crash report or the first steps: titled and closable, with a
/// transparent title bar that shows no title above its content, and movable by its background. Main thread;
/// does not block.
class SheetWindow {
 public:
  /// Lengths in points.
  static constexpr double contentWidth = 460.0;
  static constexpr double contentHeight = 600.0;
  static constexpr double minimumWidth = 460.0;
  static constexpr double minimumHeight = 480.0;

  virtual ~SheetWindow() = default;

  /// Shows the window in the middle of the screen. Its content must be in place, and it must not be open.
  virtual void open(const std::string& title) = 0;

  /// Centres the open window on the screen and brings it to the front.
  virtual void centerAndBringToFront() = 0;

  /// Closes the window if it is open. Calls the close handler before returning.
  virtual void close() = 0;

  /// Sets the handler that is called whenever the window closes, by `close` or by the user.
  virtual void setCloseHandler(std::function<void()> handler) = 0;
};

}  // namespace vorli::ports

#pragma once

#include "base/Animation.h"
#include "base/Subscription.h"

#include <functional>

namespace vorli::ports {

/// In points.
struct PopoverSize {
  double width = 0.0;
  double height = 0.0;

  bool operator==(const PopoverSize&) const = default;
};

/// The panel that hangs on the status item. Main thread; no call blocks. Handlers run on the main thread.
class PopoverWindow {
 public:
  virtual ~PopoverWindow() = default;

  /// True from `show` until the panel has closed, also while it rolls up.
  virtual bool isShown() const = 0;

  /// Shows the panel at the status item with its content at the present size, and tells the did-show handler
  /// when it stands. Nothing when it is shown. False when there is no place to show it at.
  virtual bool show() = 0;

  /// Asks the should-close handler, and closes when that says so; the answer can take effect inside the call.
  /// Nothing when the panel is not shown. The panel asks for the same by itself when the user leaves it: by a
  /// key, or for another window.
  virtual void performClose() = 0;

  /// The size set last, wherever a motion towards it stands.
  virtual PopoverSize contentSize() const = 0;
  /// Takes the size at once, and drops a motion.
  virtual void setContentSize(PopoverSize size) = 0;
  /// Moves from the shown size to this one; the curve may overshoot. A size equal to the one set last changes
  /// nothing, and the motion under way goes on. A panel that is not shown takes the size at once.
  virtual void animateContentSize(PopoverSize size, const Animation& animation) = 0;

  /// Gives the panel the keyboard.
  virtual void makeKey() = 0;

  /// The gate of all closing: true lets the panel close.
  virtual void setShouldCloseHandler(std::function<bool()> handler) = 0;
  virtual void setDidShowHandler(std::function<void()> handler) = 0;

  /// Calls `handler` when a left or right button goes down outside of the panel and of the status item,
  /// wherever on the desktop; the press still reaches what lies there. Ends with the token. A system that
  /// does not show such presses calls nothing.
  [[nodiscard]] virtual Subscription monitorPressesOutside(std::function<void()> handler) = 0;
};

}  // namespace vorli::ports

#pragma once

#include "base/Animation.h"
#include "base/Subscription.h"

#include <functional>

namespace vorli::ports {

/// Size of the panel in points.
struct PopoverSize {
  double width = 0.0;
  double height = 0.0;

  bool operator==(const PopoverSize&) const = default;
};

/// The panel attached to the status item. Main thread; no call blocks. Handlers run on the main thread.
class PopoverWindow {
 public:
  virtual ~PopoverWindow() = default;

  /// True from `show` until the panel has closed, including its closing animation.
  virtual bool isShown() const = 0;

  /// True when the panel has content and a screen to show it on.
  virtual bool hasPlace() const = 0;

  /// Shows the panel at the status item with its content at the current size, and calls the did-show handler
  /// once it is fully shown. Does nothing when it is already shown. False when there is no place to show it.
  virtual bool show() = 0;

  /// Calls the should-close handler and closes if it returns true, possibly before this call returns. Does
  /// nothing when the panel is not shown. The panel does the same on its own when the user leaves it with a
  /// key or for another window.
  virtual void performClose() = 0;

  /// The size set last, even while the panel is still moving towards it.
  virtual PopoverSize contentSize() const = 0;
  /// Sets the size at once and stops any animation.
  virtual void setContentSize(PopoverSize size) = 0;
  /// Animates from the shown size to this one; the curve may overshoot. If the size equals the one set last,
  /// nothing changes and an animation in progress continues. A panel that is not shown takes the size at
  /// once.
  virtual void animateContentSize(PopoverSize size, const Animation& animation) = 0;

  /// Gives the panel keyboard focus.
  virtual void makeKey() = 0;

  /// Sets the handler that decides whenever the panel is about to close; true lets it close.
  virtual void setShouldCloseHandler(std::function<bool()> handler) = 0;
  virtual void setDidShowHandler(std::function<void()> handler) = 0;

  /// Calls `handler` when the left or right button is pressed outside the panel and the status item, anywhere
  /// on the desktop; the press still reaches its target. Ends with the token. Never called where the system
  /// does not report such presses.
  [[nodiscard]] virtual Subscription monitorPressesOutside(std::function<void()> handler) = 0;
};

}  // namespace vorli::ports

#pragma once

#include "base/Colour.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ports {

/// A straight line with round caps, in a picture that is `StatusPicture::sidePoints` wide and high; y points
/// down.
struct Stroke {
  double fromX = 0.0, fromY = 0.0, toX = 0.0, toY = 0.0;
  double width = 0.0;
  Colour colour;

  bool operator==(const Stroke&) const = default;
};

/// The status item's picture as a list of strokes, scalable to any size.
struct StatusPicture {
  double sidePoints = 18.0;
  std::vector<Stroke> strokes;

  bool operator==(const StatusPicture&) const = default;
};

/// A click. An event that cannot be read counts as a plain left click.
struct StatusClick {
  enum class Button { left, right };
  enum class Control { up, held };
  Button button = Button::left;
  Control control = Control::up;
};

/// One row of the status item's menu.
struct MenuRow {
  enum class Kind { action, separator };
  Kind kind = Kind::action;
  std::string title;
  std::string keyEquivalent;  // lower case, without its modifier; may be empty
  std::function<void()> action;
};

/// The program's place in the menu bar or tray. Main thread; no call blocks.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Shows the item. False when it has no button to draw on; the caller then skips everything else.
  virtual bool create() = 0;
  virtual bool hasButton() const = 0;

  /// `handler` runs when the button is released.
  virtual void setClickHandler(std::function<void(const StatusClick&)> handler) = 0;

  /// Sets the source of the rows for a menu that the system itself opens; called once for each opening.
  virtual void setMenuProvider(std::function<std::vector<MenuRow>()> provider) = 0;
  /// Opens the menu at the item.
  virtual void showMenu(std::vector<MenuRow> rows) = 0;

  virtual void setToolTip(const std::string& text) = 0;
  virtual void setAccessibilityLabel(const std::string& text) = 0;
  virtual void setAccessibilityValue(const std::string& text) = 0;

  /// Shows the picture; setting an equal one costs nothing.
  virtual void setPicture(const StatusPicture& picture) = 0;

  /// True when the background of the item is dark.
  virtual bool hasDarkAppearance() const = 0;
  /// `handler` runs when `hasDarkAppearance` may have changed.
  virtual void setAppearanceHandler(std::function<void()> handler) = 0;
};

}  // namespace vorli::ports

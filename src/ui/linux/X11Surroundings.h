#pragma once

#include "ui/kit/WindowSurroundings.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/ManagerSelections.h"

#include <optional>
#include <string_view>

namespace vorli::ui {

/// An X11 desktop with its window manager. On other platforms, `setShadowMargins` does nothing, and
/// `bringToFront` only asks through Qt.
class X11Surroundings final : public WindowSurroundings {
 public:
  /// Without `movement`, nothing moves in the windows.
  X11Surroundings(DesktopAppearance& desktop, const ManagerSelections& selections,
                  const std::optional<WindowMotion>& movement = std::nullopt)
      : desktop_(desktop), selections_(selections), movement_(movement) {}

  Appearance appearance() const override;
  Subscription subscribeToAppearance(std::function<void()> handler) const override;
  Compositing compositing() const override;
  CloseButtonSide closeButtonSide() const override;
  const WindowMotion* movement() const override { return movement_ ? &*movement_ : nullptr; }
  void setShadowMargins(QWindow& window, const QMargins& shadow) const override;
  void bringToFront(QWindow& window) const override;
  bool isOnCurrentWorkspace(QWindow& window) const override;
  void windowDestroyed() const override;

 private:
  DesktopAppearance& desktop_;
  const ManagerSelections& selections_;
  const std::optional<WindowMotion> movement_;
};

/// Side of the close button in a layout as desktops publish it, such as "close,minimize:menu": the buttons at
/// the left, a colon, and those at the right. A layout without a close button counts as right.
CloseButtonSide closeButtonSideOf(std::string_view layout);

}  // namespace vorli::ui

#pragma once

#include "ui/WindowSurroundings.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/ManagerSelections.h"

namespace vorli::ui {

/// An X11 desktop with its window manager. On another platform windows get neither frame nor front.
class X11Surroundings final : public WindowSurroundings {
 public:
  X11Surroundings(const DesktopAppearance& desktop, const ManagerSelections& selections)
      : desktop_(desktop), selections_(selections) {}

  Appearance appearance() const override;
  Compositing compositing() const override;
  void setShadowMargins(QWindow& window, const QMargins& shadow) const override;
  void bringToFront(QWindow& window) const override;

 private:
  const DesktopAppearance& desktop_;
  const ManagerSelections& selections_;
};

}  // namespace vorli::ui

#pragma once

#include "ui/kit/WindowSurroundings.h"

#include <optional>

namespace vorli::ui {

/// The system's own window server, which always composes, and its conventions.
class MacSurroundings final : public WindowSurroundings {
 public:
  explicit MacSurroundings(const WindowMotion& movement) : movement_(movement) {}

  Appearance appearance() const override;
  Subscription subscribeToAppearance(std::function<void()> handler) const override;
  Compositing compositing() const override { return Compositing::present; }
  CloseButtonSide closeButtonSide() const override { return CloseButtonSide::left; }
  const WindowMotion* movement() const override { return &movement_; }
  void setShadowMargins(QWindow& window, const QMargins& shadow) const override;
  void bringToFront(QWindow& window) const override;

 private:
  const WindowMotion movement_;
};

}  // namespace vorli::ui

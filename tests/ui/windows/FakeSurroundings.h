#pragma once

#include "base/SubscriberList.h"
#include "ui/kit/WindowSurroundings.h"

#include <QMargins>
#include <QString>
#include <QWindow>
#include <functional>
#include <optional>
#include <utility>

namespace vorli::ui {

/// A desktop as a test sets it, which records the requests of windows.
class FakeSurroundings final : public WindowSurroundings {
 public:
  Appearance appearance() const override { return look; }
  Subscription subscribeToAppearance(std::function<void()> handler) const override {
    return looks_.add(std::move(handler));
  }
  Compositing compositing() const override { return composited; }
  CloseButtonSide closeButtonSide() const override { return side; }
  const WindowMotion* movement() const override { return moves ? &*moves : nullptr; }
  void setShadowMargins(QWindow&, const QMargins& margins) const override { shadow = margins; }
  void bringToFront(QWindow& window) const override {
    ++fronts;
    front = window.title();
  }
  bool isOnCurrentWorkspace(QWindow&) const override { return areHere; }
  void windowDestroyed() const override {
    if (afterWindow) afterWindow();
  }

  void change(Appearance next) {
    look = next;
    looks_.deliver();
  }

  Appearance look = Appearance::light;
  CloseButtonSide side = CloseButtonSide::right;
  Compositing composited = Compositing::present;
  std::optional<WindowMotion> moves;
  bool areHere = true;                // whether windows are on the current workspace
  std::function<void()> afterWindow;  // runs when a window has been destroyed
  mutable QMargins shadow;
  mutable int fronts = 0;  // how often a window was brought to the front
  mutable QString front;   // the title of the last one

 private:
  mutable SubscriberList<> looks_;
};

}  // namespace vorli::ui

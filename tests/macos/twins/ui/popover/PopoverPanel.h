#pragma once

// Stands in for the part of the popover that all systems share, which needs Qt's widgets. It keeps what the
// system's part sets.

#include "base/Scheduler.h"
#include "ports/PopoverWindow.h"
#include "ui/kit/WindowSurroundings.h"
#include "ui/status/ClickAnchor.h"

#include <QList>
#include <QMargins>
#include <QRect>
#include <QWindow>
#include <functional>
#include <optional>
#include <set>
#include <utility>

namespace vorli::ui {

class PopoverWidget {
 public:
  static constexpr QMargins margins{24, 16, 24, 40};

  void setAttribute(Qt::WidgetAttribute attribute) { attributes.insert(attribute); }
  WId winId() {
    hasWindow_ = true;
    return window.winId();
  }
  /// Null before the window was asked for.
  QWindow* windowHandle() { return hasWindow_ ? &window : nullptr; }

  std::set<Qt::WidgetAttribute> attributes;
  QWindow window;

 private:
  bool hasWindow_ = false;
};

class PopoverPanel : public ports::PopoverWindow {
 public:
  using ItemPlace = std::function<std::optional<ClickAnchor>()>;

  bool isShown() const override { return widget_.has_value(); }
  bool hasPlace() const override { return true; }
  bool show() override {
    openedFrom_ = itemPlace_();
    equip(widget_.emplace());
    return true;
  }
  void performClose() override { ++closings; }
  ports::PopoverSize contentSize() const override { return {}; }
  void setContentSize(ports::PopoverSize) override {}
  void animateContentSize(ports::PopoverSize, const Animation&) override {}
  void setShouldCloseHandler(std::function<bool()>) override {}
  void setDidShowHandler(std::function<void()>) override {}

  PopoverWidget& shownWidget() { return *widget_; }
  /// Another window gets the keyboard.
  void leave() { left(); }
  std::optional<QRect> panel() const { return panelOf({}, {}); }
  std::optional<ClickAnchor> placeAfterChange() const { return itemPlaceAfterChange(); }

  int closings = 0;

 protected:
  PopoverPanel(Scheduler&, ItemPlace itemPlace, const WindowSurroundings& surroundings)
      : itemPlace_(std::move(itemPlace)), surroundings_(surroundings) {}

  void unmount() { widget_.reset(); }
  const WindowSurroundings& surroundings() const { return surroundings_; }
  PopoverWidget& widget() { return *widget_; }
  const std::optional<ClickAnchor>& openedFrom() const { return openedFrom_; }
  std::optional<ClickAnchor> currentItemPlace() const { return itemPlace_(); }

 private:
  virtual std::optional<QRect> panelOf(const ClickAnchor& item, const QList<ScreenPlace>& screens) const = 0;
  virtual std::optional<ClickAnchor> itemPlaceAfterChange() const = 0;
  virtual void equip(PopoverWidget& widget) = 0;
  virtual void left() = 0;

  const ItemPlace itemPlace_;
  const WindowSurroundings& surroundings_;
  std::optional<PopoverWidget> widget_;
  std::optional<ClickAnchor> openedFrom_;
};

}  // namespace vorli::ui

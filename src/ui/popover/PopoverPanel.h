#pragma once

#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "ports/PopoverWindow.h"
#include "ui/kit/WindowSurroundings.h"
#include "ui/popover/PopoverPlace.h"
#include "ui/popover/PopoverWidget.h"
#include "ui/status/ClickAnchor.h"

#include <QList>
#include <QMetaObject>
#include <QRect>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace vorli::ui {

/// Base of the popover's windows on all desktops. The window never changes its size; the card
/// unfolds inside it.
class PopoverPanel : public ports::PopoverWindow {
 public:
  /// Returns the place of the status item, or of the last click on it; empty when it is unknown.
  using ItemPlace = std::function<std::optional<ClickAnchor>()>;

  /// Sets the content. Without it, the popover does not show. Once the launch is over, everything is prepared
  /// that only the first opening would need: the window, fonts and glyphs, light, and connections.
  void mount(PopoverView& view);
  /// Removes the content, which may then be destroyed.
  void unmount();

  bool isShown() const override { return shown_; }
  bool hasPlace() const override;
  bool show() override;
  void performClose() override;
  ports::PopoverSize contentSize() const override { return size_; }
  void setContentSize(ports::PopoverSize size) override;
  void animateContentSize(ports::PopoverSize size, const Animation& animation) override;
  void setShouldCloseHandler(std::function<bool()> handler) override { shouldClose_ = std::move(handler); }
  void setDidShowHandler(std::function<void()> handler) override { didShow_ = std::move(handler); }

 protected:
  /// `surroundings` must outlive this object. The destructor of the derived class calls `unmount`.
  PopoverPanel(Scheduler& scheduler, ItemPlace itemPlace, const WindowSurroundings& surroundings);

  Scheduler& scheduler() const { return scheduler_; }
  const WindowSurroundings& surroundings() const { return surroundings_; }
  /// The window; there is one while the popover is shown.
  PopoverWidget& widget() const { return *widget_; }
  /// Whether the window was made for a desktop with a compositor.
  Compositing compositing() const { return compositing_; }
  const std::optional<ClickAnchor>& openedFrom() const { return openedFrom_; }
  std::optional<ClickAnchor> currentItemPlace() const { return itemPlace_(); }
  /// Number and time of the last opening.
  std::uint64_t openings() const { return openings_; }
  double openedAt() const { return openedAt_; }

  virtual void prepare();
  virtual void hide();
  /// Shows the popover in a new window when the compositor came or went while it is shown.
  void compositingChanged();

  /// The window of the desktop's panel that holds the status item; empty when it is unknown or not needed.
  virtual std::optional<QRect> panelOf(const ClickAnchor& item, const QList<ScreenPlace>& screens) const = 0;
  /// The place of the status item after a screen was resized or removed.
  virtual std::optional<ClickAnchor> itemPlaceAfterChange() const = 0;
  /// Sets what a new window needs.
  virtual void equip(PopoverWidget& widget) = 0;
  /// Sets what the window needs each time before it is shown.
  virtual void equipForShowing(PopoverWidget&) {}
  /// The card has a new rectangle in the window.
  virtual void shapeTo(const QRect&) {}
  /// Another window has got the keyboard.
  virtual void left() = 0;

 private:
  std::optional<PopoverPlace> findPlace() const;
  void makeWidget();
  void appear();
  void moveTo(const PopoverPlace& place);
  void placeAgain();
  void forgetLater();

  Scheduler& scheduler_;
  const ItemPlace itemPlace_;
  const WindowSurroundings& surroundings_;
  PopoverView* view_ = nullptr;
  std::unique_ptr<PopoverWidget> widget_;
  Compositing compositing_ = Compositing::absent;  // the state that the widget was made for

  bool shown_ = false;
  std::uint64_t openings_ = 0;
  double openedAt_ = 0.0;
  ports::PopoverSize size_;
  std::optional<ClickAnchor> openedFrom_;
  Scheduler::TimerId forgetTimer_ = 0;
  Scheduler::TimerId prepareTimer_ = 0;

  std::function<bool()> shouldClose_;
  std::function<void()> didShow_;
  std::array<QMetaObject::Connection, 2> screenChanges_;
  Subscription appearance_;
};

}  // namespace vorli::ui

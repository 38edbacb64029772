#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "ports/PopoverWindow.h"
#include "ui/WindowSurroundings.h"
#include "ui/linux/ClickAnchor.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/ManagerSelections.h"
#include "ui/linux/PopoverPlace.h"
#include "ui/linux/RawPresses.h"
#include "ui/popover/PopoverWidget.h"

#include <QMetaObject>
#include <QPoint>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vorli::ui {

/// The popover on an X11 desktop. Its window has one size for good, and the card unfolds inside of it;
/// presses beside the card reach what lies behind.
class PopoverWindow final : public ports::PopoverWindow {
 public:
  /// Where the status item was clicked last, if it was.
  using LastClick = std::function<std::optional<ClickAnchor>()>;

  PopoverWindow(Scheduler& scheduler, LastClick lastClick, DesktopAppearance& desktop,
                ManagerSelections& selections, const WindowSurroundings& surroundings);
  ~PopoverWindow() override;

  /// Puts the content in. Without it the panel does not show.
  void mount(PopoverView& view);
  /// Takes the content out again; it may go afterwards.
  void unmount();

  bool isShown() const override { return shown_; }
  bool show() override;
  void performClose() override;
  ports::PopoverSize contentSize() const override { return size_; }
  void setContentSize(ports::PopoverSize size) override;
  void animateContentSize(ports::PopoverSize size, const Animation& animation) override;
  void makeKey() override;
  void setShouldCloseHandler(std::function<bool()> handler) override { shouldClose_ = std::move(handler); }
  void setDidShowHandler(std::function<void()> handler) override { didShow_ = std::move(handler); }
  Subscription monitorPressesOutside(std::function<void()> handler) override;

  /// The X11 window while the panel is shown, else 0.
  std::uint32_t nativeWindow() const;

 private:
  std::optional<PopoverPlace> findPlace() const;
  void makeWidget();
  void appear();
  void moveTo(const PopoverPlace& place);
  void placeAgain();
  void shapeTo(const QRect& card);
  void hide();
  void left();
  void pressed(QPoint native);
  void compositingChanged();
  void forgetLater();

  Scheduler& scheduler_;
  LastClick lastClick_;
  DesktopAppearance& desktop_;
  ManagerSelections& selections_;
  const WindowSurroundings& surroundings_;
  PopoverView* view_ = nullptr;
  std::unique_ptr<PopoverWidget> widget_;
  Compositing compositing_ = Compositing::absent;  // of the widget

  bool shown_ = false;
  std::uint64_t openings_ = 0;
  double openedAt_ = 0.0;
  ports::PopoverSize size_;
  std::optional<ClickAnchor> openedFrom_;
  RawPresses rawPresses_;  // heard while the panel is shown
  Scheduler::TimerId forgetTimer_ = 0;

  std::function<bool()> shouldClose_;
  std::function<void()> didShow_;
  SubscriberList<> presses_;
  std::array<QMetaObject::Connection, 2> screenChanges_;
  Subscription appearanceSubscription_, compositingSubscription_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // for what waits on the main loop
};

}  // namespace vorli::ui

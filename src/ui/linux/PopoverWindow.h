#pragma once

#include "base/SubscriberList.h"
#include "ui/linux/ManagerSelections.h"
#include "ui/linux/RawPresses.h"
#include "ui/popover/PopoverPanel.h"

#include <QPoint>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vorli::ui {

/// The popover on an X11 desktop. Presses beside the card go to the windows behind.
class PopoverWindow final : public PopoverPanel {
 public:
  /// `lastClick` returns the place of the last click on the status item.
  PopoverWindow(Scheduler& scheduler, ItemPlace lastClick, ManagerSelections& selections,
                const WindowSurroundings& surroundings);
  ~PopoverWindow() override;

  void makeKey() override;
  Subscription monitorPressesOutside(std::function<void()> handler) override;

  /// The X11 window while the popover is shown, else 0.
  std::uint32_t nativeWindow() const;

 private:
  void prepare() override;
  void hide() override;
  std::optional<QRect> panelOf(const ClickAnchor& item, const QList<ScreenPlace>& screens) const override;
  std::optional<ClickAnchor> itemPlaceAfterChange() const override;
  void equip(PopoverWidget&) override {}
  void equipForShowing(PopoverWidget& widget) override;
  void shapeTo(const QRect& card) override;
  void left() override;
  void pressed(QPoint native);

  RawPresses rawPresses_;  // listens while the popover is shown
  SubscriberList<> presses_;
  Subscription compositingSubscription_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards work that waits on the main loop
};

}  // namespace vorli::ui

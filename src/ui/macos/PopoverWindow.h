#pragma once

#include "ui/popover/PopoverPanel.h"

#include <functional>
#include <optional>

namespace vorli::ui {

/// The popover as a panel below the menu bar.
class PopoverWindow final : public PopoverPanel {
 public:
  PopoverWindow(Scheduler& scheduler, ItemPlace itemPlace, const WindowSurroundings& surroundings);
  ~PopoverWindow() override;

  void makeKey() override;
  Subscription monitorPressesOutside(std::function<void()> handler) override;

 private:
  std::optional<QRect> panelOf(const ClickAnchor& item, const QList<ScreenPlace>& screens) const override;
  std::optional<ClickAnchor> itemPlaceAfterChange() const override;
  void equip(PopoverWidget& widget) override;
  void left() override;
};

}  // namespace vorli::ui

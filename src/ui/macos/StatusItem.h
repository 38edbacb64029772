#pragma once

#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "ports/StatusItem.h"
#include "ui/status/ClickAnchor.h"

#include <optional>

@class NSStatusItem;
@class VorliStatusTarget;

namespace vorli::ui {

/// The program's item in the menu bar.
class StatusItem final : public ports::StatusItem {
 public:
  explicit StatusItem(Scheduler& scheduler);
  ~StatusItem() override;
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  bool create() override;
  bool hasButton() const override;
  void setClickHandler(std::function<void(const ports::StatusClick&)> handler) override;
  /// Does nothing: the item sends every click, and the menu is opened by `showMenu` alone.
  void setMenuProvider(std::function<std::vector<ports::MenuRow>()> provider) override;
  /// Returns when the menu is closed again. The chosen row's action runs on the main loop.
  void showMenu(std::vector<ports::MenuRow> rows) override;
  void setToolTip(const std::string& text) override;
  void setAccessibilityLabel(const std::string& text) override;
  void setAccessibilityValue(const std::string& text) override;
  void setPicture(const ports::StatusPicture& picture) override;
  bool hasDarkAppearance() const override;
  void setAppearanceHandler(std::function<void()> handler) override;

  /// The item's place on the screen; empty while it has none.
  std::optional<ClickAnchor> anchor() const;

 private:
  NSStatusItem* item_;
  VorliStatusTarget* const target_;
  std::optional<ports::StatusPicture> shown_;
  Subscription appearance_;
};

}  // namespace vorli::ui

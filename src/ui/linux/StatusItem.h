#pragma once

#include "base/Scheduler.h"
#include "ports/StatusItem.h"
#include "ui/linux/DBusMenu.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/IconPixmapCache.h"
#include "ui/linux/PanelAppearance.h"
#include "ui/linux/StatusNotifierItem.h"
#include "ui/linux/StatusNotifierWatcher.h"
#include "ui/linux/TrayHost.h"
#include "ui/linux/TrayIconFallback.h"
#include "ui/status/ClickAnchor.h"
#include "ui/status/PictureThrottle.h"

#include <QDBusConnection>
#include <memory>
#include <optional>

namespace vorli::ui {

/// The program's item in the tray: on the session bus where a panel listens there, else in an X11 tray. It
/// moves between them as panels start and stop. Without either, it remembers what to show.
class StatusItem final : public ports::StatusItem {
 public:
  /// `bus` is the item's own connection to the session bus; it may be disconnected.
  StatusItem(Scheduler& scheduler, QDBusConnection bus, ManagerSelections& selections,
             DesktopAppearance& desktop, PanelAppearance& appearance);
  ~StatusItem() override;

  bool create() override;
  bool hasButton() const override { return item_ != nullptr; }
  void setClickHandler(std::function<void(const ports::StatusClick&)> handler) override;
  void setMenuProvider(std::function<std::vector<ports::MenuRow>()> provider) override;
  void showMenu(std::vector<ports::MenuRow> rows) override;
  void setToolTip(const std::string& text) override;
  void setAccessibilityLabel(const std::string& text) override;
  void setAccessibilityValue(const std::string& text) override;
  void setPicture(const ports::StatusPicture& picture) override;
  bool hasDarkAppearance() const override { return appearance_.isDark(); }
  void setAppearanceHandler(std::function<void()> handler) override;

  /// The tray that shows the item now; `handler` runs when it changes.
  TrayKind tray() const { return host_ ? host_->kind() : TrayKind::undecided; }
  void setTrayHandler(std::function<void(TrayKind)> handler) { trayHandler_ = std::move(handler); }

  /// Place of the last click; empty when there was none, or when it was on no screen.
  const std::optional<ClickAnchor>& lastClick() const { return lastClick_; }

 private:
  void gestured(StatusNotifierItem::Gesture gesture, QPoint native);
  void clicked(const ports::StatusClick& click);
  void movedTo(TrayKind tray);
  void show(const ports::StatusPicture& picture);
  void showTexts();

  Scheduler& scheduler_;
  QDBusConnection bus_;
  ManagerSelections& selections_;
  DesktopAppearance& desktop_;
  PanelAppearance& appearance_;
  Subscription appearanceSubscription_;

  std::function<void(const ports::StatusClick&)> clickHandler_;
  std::function<std::vector<ports::MenuRow>()> menuProvider_;
  std::function<void(TrayKind)> trayHandler_;
  QString title_, label_, sentence_;
  std::optional<ClickAnchor> lastClick_;

  IconPixmapCache pixmaps_;
  std::optional<ports::StatusPicture> shown_;
  PictureThrottle throttle_;

  // Order matters: the menu and the item must be on the bus before the watcher learns of them.
  std::unique_ptr<DBusMenu> menu_;
  std::unique_ptr<StatusNotifierItem> item_;
  std::unique_ptr<StatusNotifierWatcher> watcher_;
  std::unique_ptr<TrayIconFallback> fallback_;
  std::unique_ptr<TrayHost> host_;
};

}  // namespace vorli::ui

#pragma once

#include "base/SubscriberList.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/ManagerSelections.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace vorli::ui {

/// Finds out whether the panel behind the status item is dark: from the colours that the panel publishes,
/// else from the desktop. Panel and windows may differ, so this is not the appearance of windows.
class PanelAppearance {
 public:
  /// `currentDesktop` is the session's XDG_CURRENT_DESKTOP.
  PanelAppearance(ManagerSelections& selections, DesktopAppearance& desktop, QString currentDesktop);

  bool isDark() const;

  /// `handler` runs when `isDark` may have changed.
  Subscription subscribe(std::function<void()> handler) { return changed_.add(std::move(handler)); }

 private:
  ManagerSelections& selections_;
  DesktopAppearance& desktop_;
  const bool alwaysDark_;
  SubscriberList<> changed_;
  Subscription colours_;
  Subscription windows_;
};

/// Whether the foreground colour in the bytes of a _NET_SYSTEM_TRAY_COLORS property is light; empty when the
/// bytes are malformed.
std::optional<bool> hasLightForeground(const QByteArray& trayColours);

}  // namespace vorli::ui

#pragma once

#include "base/SubscriberList.h"
#include "ui/linux/DBusSignalReceiver.h"
#include "ui/linux/GtkPreference.h"
#include "ui/linux/ManagerSelections.h"

#include <QDBusConnection>
#include <cstdint>
#include <optional>

namespace vorli::ui {

/// Finds out whether the desktop wants dark windows: from the portal's preference, else from the theme named
/// by the settings daemon or by the user's own file, else from Qt's palette. The portal is asked without
/// waiting, so the first answers may come from the others.
class DesktopAppearance {
 public:
  DesktopAppearance(QDBusConnection bus, ManagerSelections& selections);

  bool isDark() const;

  /// `handler` runs when `isDark` has changed.
  Subscription subscribe(std::function<void()> handler) { return changed_.add(std::move(handler)); }

 private:
  enum class Preference : std::uint32_t { none = 0, dark = 1, light = 2 };  // the portal's numbers

  void askPortal();
  void portalSays(const QVariant& value);
  void update();
  bool derive() const;

  QDBusConnection bus_;
  ManagerSelections& selections_;
  const GtkPreference gtk_ = GtkPreference::ofThisUser();  // read once, as other programs do
  Preference preference_ = Preference::none;
  bool dark_ = false;
  SubscriberList<> changed_;
  DBusSignalReceiver settingChanged_;
  Subscription themeSubscription_;
};

}  // namespace vorli::ui

#pragma once

#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QString>
#include <functional>

namespace vorli::ui {

/// The session's org.kde.StatusNotifierWatcher, the registry between items and panels, as far as it is known.
/// Nothing here waits for the bus.
class StatusNotifierWatcher {
 public:
  enum class Presence {
    unknown,      // not answered yet
    absent,       // nobody has the name
    withoutHost,  // somebody has, but no panel shows what is registered
    present,
  };

  /// `changed` runs when the presence has changed.
  StatusNotifierWatcher(QDBusConnection bus, std::function<void()> changed);

  Presence presence() const { return presence_; }

  /// Tells the watcher of the item that `serviceName` owns, now and each time that a watcher appears.
  void announce(const QString& serviceName);

 private:
  void ownerIs(const QString& owner);
  void askForHost();
  void registerItem();
  void set(Presence presence);

  QDBusConnection bus_;
  std::function<void()> changed_;
  Presence presence_ = Presence::unknown;
  QString owner_;
  QString serviceName_;
  QDBusServiceWatcher names_;
  DBusSignalReceiver hostRegistered_;
  DBusSignalReceiver hostUnregistered_;
  DBusSignalReceiver busLost_;
};

}  // namespace vorli::ui

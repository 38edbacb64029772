#pragma once

#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QString>
#include <functional>

namespace vorli::ui {

/// Tracks the session's org.kde.StatusNotifierWatcher, the registry of items and panels. Never waits for the
/// bus.
class StatusNotifierWatcher {
 public:
  enum class Presence {
    unknown,      // not answered yet
    absent,       // nobody owns the name
    withoutHost,  // the name has an owner, but no panel shows registered items
    present,
  };

  /// `changed` runs when the presence has changed.
  StatusNotifierWatcher(QDBusConnection bus, std::function<void()> changed);

  Presence presence() const { return presence_; }

  /// Registers the item that `serviceName` owns, now and each time that a watcher appears.
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

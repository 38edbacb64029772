#pragma once

#include <QDBusConnection>
#include <QObject>
#include <cstdint>
#include <functional>

namespace vorli::linuxhost {

/// Tells which processes put an icon into the tray, by the session bus's list of status notifier items. Asks
/// and listens without ever waiting; silent without a bus or a tray. Main thread.
class TrayIconOwners final : public QObject {
  Q_OBJECT

 public:
  explicit TrayIconOwners(std::function<void(std::int32_t pid)> ownerSeen);

 private slots:
  void itemRegistered(const QString& item);

 private:
  void askForItems();
  void askForOwner(const QString& busName);

  QDBusConnection bus_;
  std::function<void(std::int32_t)> ownerSeen_;
};

}  // namespace vorli::linuxhost

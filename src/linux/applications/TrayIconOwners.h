#pragma once

#include <QDBusConnection>
#include <QObject>
#include <cstdint>
#include <functional>

namespace vorli::linuxhost {

/// Reports the processes that have an icon in the tray, by the session bus's list of status notifier items.
/// Never blocks; reports nothing without a bus or a tray. Main thread.
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

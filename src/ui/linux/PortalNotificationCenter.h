#pragma once

#include "ports/UserNotificationCenter.h"
#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {

/// Posts the program's notices through the desktop portal, for a program in a sandbox. Listens on the bus
/// only once it has posted one.
class PortalNotificationCenter final : public ports::UserNotificationCenter {
 public:
  explicit PortalNotificationCenter(QDBusConnection bus) : bus_(std::move(bus)) {}

  void setDelegate(ports::NotificationDelegate* delegate) override { delegate_ = delegate; }
  void setNotificationCategories(std::vector<ports::NotificationCategory> categories) override;
  /// Grants when the portal answers. It asks nobody: the user allows or silences the program in the desktop's
  /// own settings, and the portal does not report which.
  void requestAuthorization(std::uint32_t options,
                            OnceReply<ports::NotificationAuthorization> reply) override;
  void add(ports::NotificationRequest request, OnceReply<std::expected<void, std::string>> reply) override;

 private:
  /// A notice that may still be answered.
  struct Posted {
    std::string identifier;
    std::string categoryIdentifier;
  };

  QVariantMap portalForm(const ports::NotificationRequest& request) const;
  void listen();
  void actionInvoked(const QDBusMessage& signal);
  /// Runs `work` in the next turn of the main loop, unless the centre has been destroyed by then.
  void later(std::function<void()> work);

  QDBusConnection bus_;
  ports::NotificationDelegate* delegate_ = nullptr;
  std::vector<ports::NotificationCategory> categories_;
  std::deque<Posted> posted_;
  std::unique_ptr<DBusSignalReceiver> invoked_;
  QObject context_;  // last: its destruction cancels pending calls
};

}  // namespace vorli::ui

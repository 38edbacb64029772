#pragma once

#include "base/Scheduler.h"
#include "ports/UserNotificationCenter.h"
#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vorli::ui {

/// Posts the program's notices to the desktop's notification server, whichever runs at that moment. Listens
/// on the bus only while one of its notices is on the screen or in a list.
class UserNotificationCenter final : public ports::UserNotificationCenter {
 public:
  UserNotificationCenter(QDBusConnection bus, Scheduler& scheduler);
  ~UserNotificationCenter() override;

  void setDelegate(ports::NotificationDelegate* delegate) override { delegate_ = delegate; }
  void setNotificationCategories(std::vector<ports::NotificationCategory> categories) override;
  /// Grants when a server answers; there is nobody else to ask. A server that is still starting has ten
  /// seconds.
  void requestAuthorization(std::uint32_t options,
                            OnceReply<ports::NotificationAuthorization> reply) override;
  /// A server without buttons shows the notice without them, and reports only the plain click.
  void add(ports::NotificationRequest request, OnceReply<std::expected<void, std::string>> reply) override;

  bool isListening() const { return listener_ != nullptr; }

 private:
  using PostReply = std::shared_ptr<OnceReply<std::expected<void, std::string>>>;
  using AuthorizationReply = std::shared_ptr<OnceReply<ports::NotificationAuthorization>>;

  /// A notice that may still be answered. Ids are unique only within one server.
  struct Shown {
    QString server;  // its own address on the bus
    std::uint32_t id;
    std::string categoryIdentifier;
  };

  struct Listener {
    DBusSignalReceiver invoked, closed;
    QDBusServiceWatcher owners;
  };

  /// Finds out the server's own address, so that only its answers count.
  void askForServer(const ports::NotificationRequest& request, const QStringList& capabilities,
                    const PostReply& reply);
  void post(const ports::NotificationRequest& request, const QStringList& capabilities, const QString& server,
            const PostReply& reply);
  QStringList actionsOf(const std::string& category, const QStringList& capabilities) const;
  void posted(const QDBusMessage& answer, const QString& server, const std::string& category,
              const PostReply& reply);
  /// Grants when the server answers; `failed` gets the error otherwise.
  void askServer(const AuthorizationReply& reply, std::function<void(const QString&)> failed);
  void awaitServer(const AuthorizationReply& reply);

  void listen();
  void stopListeningWhenIdle();
  /// Runs `work` in the next turn of the main loop, unless the centre has been destroyed by then.
  void later(std::function<void()> work);
  void actionInvoked(const QDBusMessage& signal);
  void closed(const QDBusMessage& signal);
  void serverGone(const QString& server);
  std::deque<Shown>::iterator find(const QDBusMessage& signal);

  QDBusConnection bus_;
  Scheduler& scheduler_;
  ports::NotificationDelegate* delegate_ = nullptr;
  std::vector<ports::NotificationCategory> categories_;
  std::deque<Shown> shown_;
  int posting_ = 0;  // requests that a server has not answered yet
  std::unique_ptr<Listener> listener_;
  QObject context_;  // last: its destruction cancels pending calls
};

}  // namespace vorli::ui

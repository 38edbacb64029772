#include "ui/linux/StatusNotifierWatcher.h"

#include "base/Logger.h"
#include "linux/BusDriverCall.h"
#include "ui/linux/DBusCalls.h"

#include <QDBusVariant>

namespace vorli::ui {
namespace {

constexpr Logger statusItemLog{logSubsystem, "status-item"};

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QDBusConnection bus, std::function<void()> changed)
    : bus_(std::move(bus)),
      changed_(std::move(changed)),
      names_(watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange),
      hostRegistered_(bus_, watcherPath, watcherName, QStringLiteral("StatusNotifierHostRegistered"),
                      [this](const QDBusMessage&) { askForHost(); }),
      hostUnregistered_(bus_, watcherPath, watcherName, QStringLiteral("StatusNotifierHostUnregistered"),
                        [this](const QDBusMessage&) { askForHost(); }),
      // Sent by Qt itself when the connection breaks; no change of owner is reported then.
      busLost_(bus_, QStringLiteral("/org/freedesktop/DBus/Local"),
               QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
               [this](const QDBusMessage&) { ownerIs({}); }) {
  if (!bus_.isConnected()) {
    presence_ = Presence::absent;
    return;
  }
  QObject::connect(&names_, &QDBusServiceWatcher::serviceOwnerChanged, &names_,
                   [this](const QString&, const QString&, const QString& owner) { ownerIs(owner); });
  auto ask = linuxhost::busDriverCall("GetNameOwner");
  ask << watcherName;
  callAsync(bus_, ask, &names_, [this](const QDBusMessage& reply) {
    if (presence_ != Presence::unknown || !owner_.isEmpty()) return;  // a change of owner came first
    ownerIs(reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toString() : QString());
  });
}

void StatusNotifierWatcher::announce(const QString& serviceName) {
  serviceName_ = serviceName;
  if (!owner_.isEmpty()) registerItem();
}

void StatusNotifierWatcher::ownerIs(const QString& owner) {
  owner_ = owner;
  if (owner_.isEmpty()) return set(Presence::absent);
  if (!serviceName_.isEmpty()) registerItem();
  askForHost();
}

void StatusNotifierWatcher::askForHost() {
  if (owner_.isEmpty()) return;
  auto ask = QDBusMessage::createMethodCall(
      owner_, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  ask << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
  callAsync(bus_, ask, &names_, [this, asked = owner_](const QDBusMessage& reply) {
    if (asked != owner_) return;
    // A watcher that does not answer is assumed to be a panel's own.
    const auto answer = reply.arguments().value(0).value<QDBusVariant>().variant();
    const bool without = reply.type() == QDBusMessage::ReplyMessage && answer.isValid() && !answer.toBool();
    set(without ? Presence::withoutHost : Presence::present);
  });
}

void StatusNotifierWatcher::registerItem() {
  auto call = QDBusMessage::createMethodCall(owner_, watcherPath, watcherName,
                                             QStringLiteral("RegisterStatusNotifierItem"));
  call << serviceName_;
  callAsync(bus_, call, &names_, [](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ErrorMessage) {
      statusItemLog.error("registering the status item failed: %{public}s",
                          reply.errorMessage().toStdString());
    }
  });
}

void StatusNotifierWatcher::set(Presence presence) {
  if (presence == presence_) return;
  presence_ = presence;
  changed_();
}

}  // namespace vorli::ui

#include "linux/applications/TrayIconOwners.h"

#include "linux/BusDriverCall.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace vorli::linuxhost {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

// An item is announced as "NAME", "NAME/object/path" or, by some shells, "NAME@/object/path". The owner of a
// bare path stays unknown.
QString busNameOf(const QString& item) {
  return item.section(QLatin1Char('/'), 0, 0).section(QLatin1Char('@'), 0, 0);
}

}  // namespace

TrayIconOwners::TrayIconOwners(std::function<void(std::int32_t)> ownerSeen)
    : bus_(QDBusConnection::sessionBus()), ownerSeen_(std::move(ownerSeen)) {
  if (!bus_.isConnected()) return;
  bus_.connect(watcherName, watcherPath, watcherName, QStringLiteral("StatusNotifierItemRegistered"), this,
               SLOT(itemRegistered(QString)));
  auto* comesUp = new QDBusServiceWatcher(watcherName, bus_, QDBusServiceWatcher::WatchForRegistration, this);
  connect(comesUp, &QDBusServiceWatcher::serviceRegistered, this, [this] { askForItems(); });
  askForItems();
}

void TrayIconOwners::itemRegistered(const QString& item) {
  askForOwner(busNameOf(item));
}

void TrayIconOwners::askForItems() {
  auto get = QDBusMessage::createMethodCall(
      watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  get << watcherName << QStringLiteral("RegisteredStatusNotifierItems");
  get.setAutoStartService(false);
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(get), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (reply.isError()) return;
    for (const auto& item : reply.value().variant().toStringList()) askForOwner(busNameOf(item));
  });
}

void TrayIconOwners::askForOwner(const QString& busName) {
  if (busName.isEmpty()) return;
  auto ask = busDriverCall("GetConnectionUnixProcessID");
  ask << busName;
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(ask), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<uint> reply = *answer;
    if (!reply.isError()) ownerSeen_(static_cast<std::int32_t>(reply.value()));
  });
}

}  // namespace vorli::linuxhost

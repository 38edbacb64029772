#include "linux/applications/BusNames.h"

#include "linux/BusDriverCall.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <algorithm>

namespace vorli::linuxhost {

std::string BusNames::applicationIDOf(std::string_view name) {
  const auto dash = name.rfind('-');
  const auto digits = dash == std::string_view::npos ? std::string_view() : name.substr(dash + 1);
  const bool isInstance =
      !digits.empty() && std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  return std::string(isInstance ? name.substr(0, dash) : name);
}

std::string BusNames::objectPathOf(std::string_view name) {
  std::string path = "/" + std::string(name);
  std::ranges::replace(path, '.', '/');
  std::ranges::replace(path, '-', '_');
  return path;
}

BusNames::BusNames(Handlers handlers) : bus_(QDBusConnection::sessionBus()), handlers_(std::move(handlers)) {
  if (!bus_.isConnected()) return;
  bus_.connect(QLatin1String(bus::driver::service), QLatin1String(bus::driver::path),
               QLatin1String(bus::driver::interface), QStringLiteral("NameOwnerChanged"), this,
               SLOT(ownerChanged(QString, QString, QString)));
  askForNames();
}

void BusNames::ownerChanged(const QString& name, const QString&, const QString& newOwner) {
  if (!newOwner.isEmpty()) askForOwner(name);
}

void BusNames::askForNames() {
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(busDriverCall("ListNames")), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QStringList> names = *answer;
    if (names.isError()) return;
    for (const auto& name : names.value()) askForOwner(name);
  });
}

void BusNames::askForOwner(const QString& name) {
  if (name.startsWith(QLatin1Char(':'))) return;
  const auto applicationID = applicationIDOf(name.toStdString());
  if (!handlers_.isApplication(applicationID)) return;
  auto ask = busDriverCall("GetConnectionUnixProcessID");
  ask << name;
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(ask), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, name, applicationID] {
    answer->deleteLater();
    const QDBusPendingReply<uint> owner = *answer;
    if (owner.isError()) return;
    const auto pid = static_cast<std::int32_t>(owner.value());
    handlers_.ownerSeen(pid, applicationID);
    askForActions(pid, name);
  });
}

void BusNames::askForActions(std::int32_t pid, const QString& name) {
  const QuitAction action{name.toStdString(), objectPathOf(name.toStdString())};
  auto list = QDBusMessage::createMethodCall(name, QString::fromStdString(action.objectPath),
                                             QStringLiteral("org.gtk.Actions"), QStringLiteral("List"));
  list.setAutoStartService(false);  // the owner may have ended meanwhile
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(list), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, pid, action] {
    answer->deleteLater();
    const QDBusPendingReply<QStringList> actions = *answer;
    if (actions.isError() || !actions.value().contains(QStringLiteral("quit"))) return;
    handlers_.quitActionSeen(pid, action);
  });
}

}  // namespace vorli::linuxhost

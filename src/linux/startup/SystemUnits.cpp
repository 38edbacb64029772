#include "linux/startup/SystemUnits.h"

#include "base/Logger.h"
#include "linux/session/BusGreeting.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QMetaObject>
#include <QStringList>
#include <QVariant>
#include <limits>
#include <memory>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr Logger startupLog{logSubsystem, "startup"};

constexpr double greetingLimitSeconds = 1.0;

// The answer comes when the user has entered the password or given up.
constexpr int untilTheUserAnswers = std::numeric_limits<int>::max();

ports::UnitReply replyTo(const QDBusMessage& answer) {
  if (answer.type() == QDBusMessage::ReplyMessage) return ports::UnitReply::done;
  const auto name = answer.errorName();
  startupLog.error("the service manager refused: %{public}s %{public}s", name.toStdString(),
                   answer.errorMessage().toStdString());
  const bool isRefusal = name == QLatin1String("org.freedesktop.DBus.Error.AccessDenied") ||
                         name == QLatin1String("org.freedesktop.DBus.Error.InteractiveAuthorizationRequired");
  return isRefusal ? ports::UnitReply::refused : ports::UnitReply::unavailable;
}

QString connectionName() {
  return QStringLiteral("vorli-units");
}

}  // namespace

SystemUnits::~SystemUnits() {
  QDBusConnection::disconnectFromBus(connectionName());
}

// Qt waits indefinitely for a bus that hangs.
QDBusConnection SystemUnits::connection() {
  QDBusConnection made(connectionName());
  if (made.isConnected()) return made;
  QDBusConnection::disconnectFromBus(connectionName());
  const auto address = busAddress_.isEmpty() ? systemBusAddress() : busAddress_.toStdString();
  if (!greetsBack(address, greetingLimitSeconds)) return QDBusConnection(connectionName());
  return busAddress_.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName())
                               : QDBusConnection::connectToBus(busAddress_, connectionName());
}

// Neither call uses force, so a file of somebody else is never replaced.
void SystemUnits::mask(const std::string& unit, OnceReply<ports::UnitReply> reply) {
  const QStringList units{QString::fromStdString(unit)};
  call(QStringLiteral("MaskUnitFiles"), {units, false, false}, std::move(reply));
}

void SystemUnits::unmask(const std::string& unit, OnceReply<ports::UnitReply> reply) {
  const QStringList units{QString::fromStdString(unit)};
  call(QStringLiteral("UnmaskUnitFiles"), {units, false}, std::move(reply));
}

void SystemUnits::call(const QString& method, const QVariantList& arguments,
                       OnceReply<ports::UnitReply> reply) {
  const auto waiting = std::make_shared<OnceReply<ports::UnitReply>>(std::move(reply));
  const auto bus = connection();
  if (!bus.isConnected()) {  // a call without a bus is never answered
    startupLog.error("the service manager cannot be asked: the system bus cannot be reached");
    QMetaObject::invokeMethod(
        &receiver_, [waiting] { std::move (*waiting)(ports::UnitReply::unavailable); }, Qt::QueuedConnection);
    return;
  }
  auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.systemd1"),
                                                QStringLiteral("/org/freedesktop/systemd1"),
                                                QStringLiteral("org.freedesktop.systemd1.Manager"), method);
  message.setInteractiveAuthorizationAllowed(true);
  message.setArguments(arguments);
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message, untilTheUserAnswers), &receiver_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &receiver_, [watcher, waiting] {
    watcher->deleteLater();
    std::move (*waiting)(replyTo(watcher->reply()));
  });
}

}  // namespace vorli::linuxhost

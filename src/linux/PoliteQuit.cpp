#include "linux/PoliteQuit.h"

#include "linux/ProcessExit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <algorithm>

namespace vorli::linuxhost {
namespace {

const QString actionsInterface = QStringLiteral("org.gtk.Actions");

// An application that does not answer within this has its windows closed instead.
constexpr int actionTimeoutMilliseconds = 1000;

QDBusMessage actionCall(const DesktopWindow& window, const QString& method) {
  return QDBusMessage::createMethodCall(QString::fromStdString(window.gtkUniqueBusName),
                                        QString::fromStdString(window.gtkApplicationObjectPath),
                                        actionsInterface, method);
}

bool exportsActions(const DesktopWindow& window) {
  return window.gtkUniqueBusName.starts_with(':') && window.gtkApplicationObjectPath.starts_with('/');
}

}  // namespace

bool PoliteQuit::ask(const std::vector<DesktopWindow>& windows, const ProcessExit& process) {
  const auto exporting = std::ranges::find_if(windows, exportsActions);
  if (exporting != windows.end() && QDBusConnection::sessionBus().isConnected()) {
    askByAction(*exporting, windows);
    return true;
  }
  for (const auto& window : windows) windows_.requestClose(window.id);
  return !windows.empty() || process.requestTermination();
}

void PoliteQuit::askByAction(const DesktopWindow& window, std::vector<DesktopWindow> all) {
  auto bus = QDBusConnection::sessionBus();
  auto* listing = new QDBusPendingCallWatcher(
      bus.asyncCall(actionCall(window, QStringLiteral("List")), actionTimeoutMilliseconds));
  QObject::connect(listing, &QDBusPendingCallWatcher::finished,
                   [this, bus, listing, window, all = std::move(all)]() mutable {
                     listing->deleteLater();
                     const QDBusPendingReply<QStringList> actions = *listing;
                     if (!actions.isError() && actions.value().contains(QStringLiteral("quit"))) {
                       auto quit = actionCall(window, QStringLiteral("Activate"));
                       quit << QStringLiteral("quit") << QVariantList() << QVariantMap();
                       bus.send(quit);
                       return;
                     }
                     for (const auto& each : all) windows_.requestClose(each.id);
                   });
}

}  // namespace vorli::linuxhost

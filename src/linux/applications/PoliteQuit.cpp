#include "linux/applications/PoliteQuit.h"

#include "base/Logger.h"
#include "linux/applications/ProcessExit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <algorithm>

namespace vorli::linuxhost {
namespace {

constexpr Logger quitLog{logSubsystem, "quitter"};

const QString actionsInterface = QStringLiteral("org.gtk.Actions");

// After this time without an answer, the application's windows are closed instead.
constexpr int actionTimeoutMilliseconds = 1000;

// An application that has given up its name, because it is ending, must not be started again by the bus.
QDBusMessage actionCall(const QuitAction& action, const QString& method) {
  auto call =
      QDBusMessage::createMethodCall(QString::fromStdString(action.busName),
                                     QString::fromStdString(action.objectPath), actionsInterface, method);
  call.setAutoStartService(false);
  return call;
}

bool exportsActions(const DesktopWindow& window) {
  return window.gtkUniqueBusName.starts_with(':') && window.gtkApplicationObjectPath.starts_with('/');
}

// Prefers the action that the application's windows announce, because it belongs to exactly this process.
std::optional<QuitAction> actionOf(const PoliteQuit::Target& target) {
  const auto exporting = std::ranges::find_if(target.windows, exportsActions);
  if (exporting == target.windows.end()) return target.quitAction;
  return QuitAction{exporting->gtkUniqueBusName, exporting->gtkApplicationObjectPath};
}

}  // namespace

ports::QuitAnswer PoliteQuit::ask(const Target& target) {
  const auto action = actionOf(target);
  if (action && QDBusConnection::sessionBus().isConnected()) {
    askByAction(*action, target.windows);
    return ports::QuitAnswer::asked;
  }
  for (const auto& window : target.windows) windows_.requestClose(window.id);
  if (!target.windows.empty()) return ports::QuitAnswer::asked;
  if (target.permitted == Signals::toWindowless) return target.process.requestTermination();
  quitLog.log("not asked to quit: a signal could lose unsaved work");
  return ports::QuitAnswer::cannotBeAsked;
}

ports::QuitAnswer PoliteQuit::answer(const Target& target) {
  if (!target.windows.empty() || target.quitAction) return ports::QuitAnswer::asked;
  return target.permitted == Signals::toWindowless ? target.process.answerToTermination()
                                                   : ports::QuitAnswer::cannotBeAsked;
}

void PoliteQuit::askByAction(const QuitAction& action, std::vector<DesktopWindow> windows) {
  auto bus = QDBusConnection::sessionBus();
  auto* listing = new QDBusPendingCallWatcher(
      bus.asyncCall(actionCall(action, QStringLiteral("List")), actionTimeoutMilliseconds));
  QObject::connect(listing, &QDBusPendingCallWatcher::finished, listing, &QObject::deleteLater);
  QObject::connect(listing, &QDBusPendingCallWatcher::finished, &receiver_,
                   [this, bus, listing, action, windows = std::move(windows)]() mutable {
                     const QDBusPendingReply<QStringList> actions = *listing;
                     if (!actions.isError() && actions.value().contains(QStringLiteral("quit"))) {
                       auto quit = actionCall(action, QStringLiteral("Activate"));
                       quit << QStringLiteral("quit") << QVariantList() << QVariantMap();
                       bus.send(quit);
                       return;
                     }
                     for (const auto& each : windows) windows_.requestClose(each.id);
                   });
}

}  // namespace vorli::linuxhost

#include "linux/session/FileViewer.h"

#include "linux/session/DesktopLog.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QUrl>
#include <utility>

namespace vorli::linuxhost {

namespace {

// A file manager that must be started first is slow to answer.
constexpr int answerMilliseconds = 15'000;

}  // namespace

FileViewer::FileViewer(QDBusConnection sessionBus, LinkHandlers::Places places)
    : bus_(std::move(sessionBus)), handlers_(std::move(places)) {}

void FileViewer::reveal(const std::string& path) {
  if (!bus_.isConnected()) return openFolderOf(path);  // a call without a bus is never answered
  auto call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  const auto link = QUrl::fromLocalFile(QString::fromStdString(path)).toString(QUrl::FullyEncoded);
  call << QStringList{link} << QString();  // no startup notification
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call, answerMilliseconds));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &receiver_, [this, watcher, path] {
    if (const QDBusPendingReply<> reply = *watcher; reply.isError()) openFolderOf(path);
  });
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, &QObject::deleteLater);
}

void FileViewer::openFolderOf(const std::string& path) const {
  if (handlers_.open("inode/directory", path.substr(0, path.rfind('/')))) return;
  desktopLog.error("no file manager shows %{public}s", path);
}

}  // namespace vorli::linuxhost

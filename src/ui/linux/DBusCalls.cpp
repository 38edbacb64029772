#include "ui/linux/DBusCalls.h"

#include <QDBusPendingCallWatcher>

namespace vorli::ui {

void callAsync(QDBusConnection bus, const QDBusMessage& call, QObject* owner,
               std::function<void(const QDBusMessage&)> finished) {
  constexpr int timeoutMilliseconds = 10000;
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, timeoutMilliseconds), owner);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner,
                   [finished = std::move(finished)](QDBusPendingCallWatcher* done) {
                     done->deleteLater();
                     finished(done->reply());
                   });
}

bool isReply(const QDBusMessage& answer) {
  return answer.type() == QDBusMessage::ReplyMessage;
}

}  // namespace vorli::ui

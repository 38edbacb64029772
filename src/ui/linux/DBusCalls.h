#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace vorli::ui {

/// Calls a method without waiting. Passes the reply or the error to `finished` on the main thread, unless
/// `owner` has been destroyed by then.
void callAsync(QDBusConnection bus, const QDBusMessage& call, QObject* owner,
               std::function<void(const QDBusMessage&)> finished);

/// Error of a program that runs without a session bus.
inline constexpr const char* noSessionBus = "There is no session bus.";

/// False for an error.
bool isReply(const QDBusMessage& answer);

}  // namespace vorli::ui

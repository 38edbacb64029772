#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace vorli::ui {

/// Calls a method without waiting and hands the reply, or the error, to `finished` on the main thread, unless
/// `owner` is gone by then.
void callAsync(QDBusConnection bus, const QDBusMessage& call, QObject* owner,
               std::function<void(const QDBusMessage&)> finished);

}  // namespace vorli::ui

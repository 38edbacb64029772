#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>
#include <functional>

namespace vorli::ui {

/// Answers a call of org.freedesktop.DBus.Properties for an object with one interface of read-only
/// properties. Returns false when the message is not such a call.
bool answerPropertyCall(const QDBusMessage& message, const QDBusConnection& bus, const QString& interface,
                        const std::function<QVariantMap()>& read);

/// Sends the reply unless the caller does not want one.
void answer(const QDBusMessage& message, const QDBusConnection& bus, const QVariantList& values = {});
void refuse(const QDBusMessage& message, const QDBusConnection& bus, QDBusError::ErrorType error,
            const QString& text);

}  // namespace vorli::ui

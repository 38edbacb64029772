#include "ui/linux/DBusPropertyCalls.h"

#include <QDBusError>
#include <QDBusVariant>

namespace vorli::ui {

void answer(const QDBusMessage& message, const QDBusConnection& bus, const QVariantList& values) {
  if (message.isReplyRequired()) bus.send(message.createReply(values));
}

void refuse(const QDBusMessage& message, const QDBusConnection& bus, QDBusError::ErrorType error,
            const QString& text) {
  if (message.isReplyRequired()) bus.send(message.createErrorReply(error, text));
}

bool answerPropertyCall(const QDBusMessage& message, const QDBusConnection& bus, const QString& interface,
                        const std::function<QVariantMap()>& read) {
  if (message.interface() != QLatin1String("org.freedesktop.DBus.Properties")) return false;
  const auto arguments = message.arguments();
  const auto asked = arguments.value(0).toString();
  const bool known = asked.isEmpty() || asked == interface;
  if (message.member() == QLatin1String("GetAll")) {
    answer(message, bus, {known ? read() : QVariantMap{}});
  } else if (message.member() == QLatin1String("Get")) {
    const auto name = arguments.value(1).toString();
    const auto all = known ? read() : QVariantMap{};
    const auto found = all.find(name);
    if (found == all.end()) {
      refuse(message, bus, QDBusError::UnknownProperty, name);
    } else {
      answer(message, bus, {QVariant::fromValue(QDBusVariant(*found))});
    }
  } else {
    refuse(message, bus, QDBusError::PropertyReadOnly, arguments.value(1).toString());
  }
  return true;
}

}  // namespace vorli::ui

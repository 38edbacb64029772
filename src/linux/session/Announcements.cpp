#include "linux/session/Announcements.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

namespace vorli::linuxhost {

namespace {

constexpr int afterTheCurrentUtterance = 1;  // "polite"

}  // namespace

void Announcements::post(std::string_view text) {
  const QDBusConnection toolkits(QStringLiteral("a11y"));  // the name that the toolkit gave the connection
  if (!toolkits.isConnected()) return;
  auto signal = QDBusMessage::createSignal(QStringLiteral("/org/a11y/atspi/accessible/root"),
                                           QStringLiteral("org.a11y.atspi.Event.Object"),
                                           QStringLiteral("Announcement"));
  const auto spoken = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  signal.setArguments(
      {QString(), afterTheCurrentUtterance, 0, QVariant::fromValue(QDBusVariant(spoken)), QVariantMap()});
  toolkits.send(signal);
}

}  // namespace vorli::linuxhost

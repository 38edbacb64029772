#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace vorli::ui {

/// One item of a menu with its children, as transferred by com.canonical.dbusmenu.
struct DBusMenuNode {
  int id = 0;
  QVariantMap properties;
  QList<DBusMenuNode> children;
};

/// The properties of one item.
struct DBusMenuProperties {
  int id = 0;
  QVariantMap properties;
};

/// Something that happened to one item.
struct DBusMenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuNode& node);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

/// Registers the types above with QtDBus. May be called more than once.
void registerDBusMenuTypes();

}  // namespace vorli::ui

Q_DECLARE_METATYPE(vorli::ui::DBusMenuNode)
Q_DECLARE_METATYPE(vorli::ui::DBusMenuProperties)
Q_DECLARE_METATYPE(vorli::ui::DBusMenuEvent)

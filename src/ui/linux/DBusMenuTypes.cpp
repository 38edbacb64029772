#include "ui/linux/DBusMenuTypes.h"

#include <QDBusMetaType>

namespace vorli::ui {

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuNode& node) {
  argument.beginStructure();
  argument << node.id << node.properties;
  argument.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const auto& child : node.children) argument << QDBusVariant(QVariant::fromValue(child));
  argument.endArray();
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuNode& node) {
  argument.beginStructure();
  argument >> node.id >> node.properties;
  node.children.clear();
  argument.beginArray();
  while (!argument.atEnd()) {
    QDBusVariant child;
    argument >> child;
    node.children.push_back(qdbus_cast<DBusMenuNode>(child.variant()));
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& item) {
  argument.beginStructure();
  argument << item.id << item.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& item) {
  argument.beginStructure();
  argument >> item.id >> item.properties;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
  argument.beginStructure();
  argument << event.id << event.name << event.data << event.timestamp;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
  argument.beginStructure();
  argument >> event.id >> event.name >> event.data >> event.timestamp;
  argument.endStructure();
  return argument;
}

void registerDBusMenuTypes() {
  qDBusRegisterMetaType<DBusMenuNode>();
  qDBusRegisterMetaType<DBusMenuProperties>();
  qDBusRegisterMetaType<QList<DBusMenuProperties>>();
  qDBusRegisterMetaType<DBusMenuEvent>();
  qDBusRegisterMetaType<QList<DBusMenuEvent>>();
  qDBusRegisterMetaType<QList<int>>();
  qDBusRegisterMetaType<QList<QStringList>>();
}

}  // namespace vorli::ui

#include "ui/linux/PortalShortcut.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace vorli::ui {

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
  argument.beginStructure();
  argument << shortcut.id << shortcut.options;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
  argument.beginStructure();
  argument >> shortcut.id >> shortcut.options;
  argument.endStructure();
  return argument;
}

void registerPortalShortcut() {
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<PortalShortcuts>();
}

}  // namespace vorli::ui

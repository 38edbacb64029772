#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

class QDBusArgument;

namespace vorli::ui {

/// A shortcut that a program requests from the desktop portal, in its form on the bus: (sa{sv}).
struct PortalShortcut {
  QString id;
  QVariantMap options;
};
using PortalShortcuts = QList<PortalShortcut>;

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut);
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut);

/// Registers the types with QtDBus. May be called more than once.
void registerPortalShortcut();

}  // namespace vorli::ui

Q_DECLARE_METATYPE(vorli::ui::PortalShortcut)

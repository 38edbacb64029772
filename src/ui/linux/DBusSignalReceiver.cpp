#include "ui/linux/DBusSignalReceiver.h"

namespace vorli::ui {

DBusSignalReceiver::DBusSignalReceiver(QDBusConnection bus, const QString& path, const QString& interface,
                                       const QString& name, Handler handler)
    : bus_(std::move(bus)), path_(path), interface_(interface), name_(name), handler_(std::move(handler)) {
  bus_.connect({}, path_, interface_, name_, this, SLOT(received(QDBusMessage)));
}

DBusSignalReceiver::~DBusSignalReceiver() {
  bus_.disconnect({}, path_, interface_, name_, this, SLOT(received(QDBusMessage)));
}

}  // namespace vorli::ui

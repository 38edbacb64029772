#pragma once

#include "linux/bus/BusDriver.h"

#include <QDBusMessage>

namespace vorli::linuxhost {

/// Makes a call to the bus itself.
inline QDBusMessage busDriverCall(const char* method) {
  return QDBusMessage::createMethodCall(QLatin1String(bus::driver::service), QLatin1String(bus::driver::path),
                                        QLatin1String(bus::driver::interface), QLatin1String(method));
}

}  // namespace vorli::linuxhost

#include "main/LinuxDisplay.h"

#include <QByteArray>
#include <QDir>
#include <QLibraryInfo>
#include <QString>
#include <cstdlib>
#include <xcb/xcb.h>

namespace vorli {

namespace {

constexpr const char* platformVariable = "QT_QPA_PLATFORM";

bool canReachDisplay() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reached;
}

// Qt's Wayland back end comes in a separate package.
bool hasWaylandBackEnd() {
  const QDir backEnds(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
  return !backEnds.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
}

}  // namespace

X11Preference::X11Preference() : isSet_(std::getenv("DISPLAY") && !std::getenv(platformVariable)) {
  if (isSet_) qputenv(platformVariable, "xcb");
}

X11Preference::~X11Preference() {
  if (isSet_) qunsetenv(platformVariable);
}

bool hasDisplay() {
  const auto platform = qgetenv(platformVariable);
  if (platform.startsWith("xcb")) return canReachDisplay();
  if (platform.startsWith("wayland")) return hasWaylandBackEnd();
  if (!platform.isEmpty()) return true;
  return (std::getenv("WAYLAND_DISPLAY") && hasWaylandBackEnd()) || canReachDisplay();
}

}  // namespace vorli

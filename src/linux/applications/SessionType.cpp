#include "linux/applications/SessionType.h"

#include <cstdlib>
#include <string_view>

namespace vorli::linuxhost {
namespace {

std::string_view sessionVariable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

bool isWaylandSession() {
  return !sessionVariable("WAYLAND_DISPLAY").empty() || !sessionVariable("WAYLAND_SOCKET").empty() ||
         sessionVariable("XDG_SESSION_TYPE") == "wayland";
}

std::string compositorSocket() {
  if (!isWaylandSession()) return {};
  std::string name(sessionVariable("WAYLAND_DISPLAY"));
  if (name.empty()) name = "wayland-0";
  return name.starts_with('/') ? name : std::string(sessionVariable("XDG_RUNTIME_DIR")) + "/" + name;
}

}  // namespace vorli::linuxhost

#include "linux/applications/PlasmaWindows.h"

#include "linux/applications/WaylandProtocols.h"

#include <algorithm>
#include <array>
#include <wayland-client.h>

namespace vorli::linuxhost {
namespace {

constexpr std::uint32_t newestVersion = 16;

}  // namespace

PlasmaWindows::PlasmaWindows(wl_registry* registry, std::uint32_t name, std::uint32_t version,
                             std::uint32_t& lastID)
    : WindowProtocol({registry, name, std::min(version, newestVersion)}, wayland::plasmaWindowManagement,
                     {static_cast<std::uint32_t>(wayland::PlasmaWindowRequest::close),
                      static_cast<std::uint32_t>(wayland::PlasmaWindowRequest::destroy)},
                     lastID) {}

// Requests each announced window; its description follows.
void PlasmaWindows::managerEvent(std::uint32_t event, const wl_argument* arguments) {
  using enum wayland::PlasmaWindowManagementEvent;
  if (event == static_cast<std::uint32_t>(showDesktopChanged)) setShowingDesktop(arguments[0].u != 0);
  if (event != static_cast<std::uint32_t>(windowWithUUID)) return;
  std::array<wl_argument, 2> request{};  // the new object has no value: the library creates it
  request[1].s = arguments[1].s;
  const auto opcode = static_cast<std::uint32_t>(wayland::PlasmaWindowManagementRequest::windowByUUID);
  if (auto* window =
          wl_proxy_marshal_array_constructor(manager(), opcode, request.data(), &wayland::plasmaWindow)) {
    add(window);
  }
}

void PlasmaWindows::windowEvent(wl_proxy* proxy, Toplevel& toplevel, std::uint32_t event,
                                const wl_argument* arguments) {
  auto& window = toplevel.window;
  switch (static_cast<wayland::PlasmaWindowEvent>(event)) {
    using enum wayland::PlasmaWindowEvent;
    case appIDChanged:
      window.appID = arguments[0].s;
      break;
    case stateChanged:
      window.isActive = (arguments[0].u & wayland::plasmaActive) != 0;
      window.isMinimised = (arguments[0].u & wayland::plasmaMinimised) != 0;
      window.isNormal = (arguments[0].u & wayland::plasmaSkipsTaskBar) == 0;
      break;
    case pidChanged:
      window.pid = static_cast<std::int32_t>(arguments[0].u);
      break;
    case initialState:
      toplevel.isComplete = true;
      break;
    case unmapped:
      remove(proxy);
      break;
    default:
      break;
  }
}

}  // namespace vorli::linuxhost

#include "linux/applications/ForeignToplevels.h"

#include "linux/applications/WaylandProtocols.h"

#include <algorithm>
#include <span>
#include <wayland-client.h>

namespace vorli::linuxhost {

using wayland::ForeignToplevelState;

ForeignToplevels::ForeignToplevels(wl_registry* registry, std::uint32_t name, std::uint32_t& lastID)
    : WindowProtocol({registry, name, 1}, wayland::foreignToplevelManager,
                     {static_cast<std::uint32_t>(wayland::ForeignToplevelRequest::close),
                      static_cast<std::uint32_t>(wayland::ForeignToplevelRequest::destroy)},
                     lastID) {}

void ForeignToplevels::managerEvent(std::uint32_t event, const wl_argument* arguments) {
  using enum wayland::ForeignToplevelManagerEvent;
  if (event == static_cast<std::uint32_t>(toplevel)) add(reinterpret_cast<wl_proxy*>(arguments[0].o));
  if (event == static_cast<std::uint32_t>(finished)) end();
}

void ForeignToplevels::windowEvent(wl_proxy* proxy, Toplevel& toplevel, std::uint32_t event,
                                   const wl_argument* arguments) {
  auto& window = toplevel.window;
  switch (static_cast<wayland::ForeignToplevelEvent>(event)) {
    using enum wayland::ForeignToplevelEvent;
    case appID:
      window.appID = arguments[0].s;
      break;
    case state: {
      const std::span states(static_cast<const std::uint32_t*>(arguments[0].a->data),
                             arguments[0].a->size / sizeof(std::uint32_t));
      const auto is = [&states](ForeignToplevelState wanted) {
        return std::ranges::find(states, static_cast<std::uint32_t>(wanted)) != states.end();
      };
      window.isActive = is(ForeignToplevelState::activated);
      window.isMinimised = is(ForeignToplevelState::minimised);
      break;
    }
    case done:
      toplevel.isComplete = true;
      break;
    case closed:
      remove(proxy);
      break;
    default:
      break;
  }
}

}  // namespace vorli::linuxhost

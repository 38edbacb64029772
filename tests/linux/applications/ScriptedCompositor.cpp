#include "tests/linux/applications/ScriptedCompositor.h"

#include "linux/applications/WaylandProtocols.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace vorli::linuxhost {
namespace {

using wayland::ForeignToplevelEvent;
using wayland::PlasmaWindowEvent;

int listeningSocket(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool listens = bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                       listen(listener, 16) == 0;
  return listens ? listener : -1;
}

template <typename Event, typename... Arguments>
void post(wl_resource* object, Event event, Arguments... arguments) {
  std::array<wl_argument, sizeof...(arguments) + 1> all{arguments...};
  wl_resource_post_event_array(object, static_cast<std::uint32_t>(event), all.data());
}

wl_argument number(std::uint32_t value) {
  wl_argument argument{};
  argument.u = value;
  return argument;
}

wl_argument text(const std::string& value) {
  wl_argument argument{};
  argument.s = value.c_str();
  return argument;
}

}  // namespace

ScriptedCompositor::ScriptedCompositor(std::filesystem::path socket, Protocol protocol)
    : socket_(std::move(socket)), protocol_(protocol), display_(wl_display_create()) {
  wl_display_add_socket_fd(display_, listeningSocket(socket_));
  if (protocol_ == Protocol::foreignToplevels) {
    wl_global_create(display_, &wayland::foreignToplevelManager, 1, this, bind);
  } else if (isPlasma()) {
    wl_global_create(display_, &wayland::plasmaWindowManagement, 16, this, bind);
  }
}

ScriptedCompositor::~ScriptedCompositor() {
  wl_display_destroy_clients(display_);
  wl_display_destroy(display_);
  std::filesystem::remove(socket_);
}

void ScriptedCompositor::dispatch() {
  wl_event_loop_dispatch(wl_display_get_event_loop(display_), 0);
  wl_display_flush_clients(display_);
}

void ScriptedCompositor::bind(wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
  auto& compositor = *static_cast<ScriptedCompositor*>(self);
  const auto& interface =
      compositor.isPlasma() ? wayland::plasmaWindowManagement : wayland::foreignToplevelManager;
  auto* manager = wl_resource_create(client, &interface, static_cast<int>(version), id);
  wl_resource_set_dispatcher(manager, managerRequest, nullptr, self, forget);
  compositor.managers_.push_back(manager);
  for (auto& window : compositor.windows_) compositor.announce(window, manager);
}

void ScriptedCompositor::forget(wl_resource* object) {
  auto& compositor = *static_cast<ScriptedCompositor*>(wl_resource_get_user_data(object));
  std::erase(compositor.managers_, object);
  for (auto& window : compositor.windows_) std::erase(window.objects, object);
}

ScriptedCompositor::Window& ScriptedCompositor::open(Window window) {
  window.uuid = "window-" + std::to_string(windows_.size());
  windows_.push_back(std::move(window));
  for (auto* manager : managers_) announce(windows_.back(), manager);
  return windows_.back();
}

void ScriptedCompositor::announce(Window& window, wl_resource* manager) {
  if (isPlasma()) {
    post(manager, wayland::PlasmaWindowManagementEvent::windowWithUUID, number(7), text(window.uuid));
    return;
  }
  auto* object = addObject(window, wl_resource_get_client(manager), 0);
  wl_argument argument{};
  argument.o = reinterpret_cast<wl_object*>(object);
  post(manager, wayland::ForeignToplevelManagerEvent::toplevel, argument);
  describe(window, object);
}

wl_resource* ScriptedCompositor::addObject(Window& window, wl_client* client, std::uint32_t id) {
  const auto& interface = isPlasma() ? wayland::plasmaWindow : wayland::foreignToplevel;
  auto* object = wl_resource_create(client, &interface, interface.version, id);
  wl_resource_set_dispatcher(object, windowRequest, nullptr, this, forget);
  window.objects.push_back(object);
  return object;
}

void ScriptedCompositor::describe(Window& window, wl_resource* object) const {
  if (isPlasma()) {
    const std::uint32_t state = (window.isActive ? wayland::plasmaActive : 0) |
                                (window.isMinimised ? wayland::plasmaMinimised : 0) |
                                (window.isOnTaskBar ? 0 : wayland::plasmaSkipsTaskBar);
    post(object, PlasmaWindowEvent::appIDChanged, text(window.appID));
    post(object, PlasmaWindowEvent::stateChanged, number(state));
    post(object, PlasmaWindowEvent::pidChanged, number(static_cast<std::uint32_t>(window.pid)));
    post(object, PlasmaWindowEvent::initialState);
    return;
  }
  std::vector<wayland::ForeignToplevelState> states;
  if (window.isMinimised) states.push_back(wayland::ForeignToplevelState::minimised);
  if (window.isActive) states.push_back(wayland::ForeignToplevelState::activated);
  wl_array array{states.size() * sizeof states[0], 0, states.data()};
  wl_argument argument{};
  argument.a = &array;
  post(object, ForeignToplevelEvent::appID, text(window.appID));
  post(object, ForeignToplevelEvent::state, argument);
  post(object, ForeignToplevelEvent::done);
}

void ScriptedCompositor::update(Window& window) {
  for (auto* object : window.objects) describe(window, object);
}

void ScriptedCompositor::setTitle(Window& window, const std::string& title) {
  constexpr std::uint32_t titleEvent = 0;  // of both protocols
  for (auto* object : window.objects) post(object, titleEvent, text(title));
}

void ScriptedCompositor::close(Window& window) {
  for (auto* object : window.objects) {
    if (isPlasma()) {
      post(object, PlasmaWindowEvent::unmapped);
    } else {
      post(object, ForeignToplevelEvent::closed);
    }
  }
}

void ScriptedCompositor::showDesktop() {
  for (auto* manager : managers_) {
    post(manager, wayland::PlasmaWindowManagementEvent::showDesktopChanged, number(1));
  }
}

void ScriptedCompositor::finish() {
  for (auto* manager : managers_) post(manager, wayland::ForeignToplevelManagerEvent::finished);
}

int ScriptedCompositor::managerRequest(const void*, void* target, std::uint32_t request, const wl_message*,
                                       wl_argument* arguments) {
  auto* manager = static_cast<wl_resource*>(target);
  auto& compositor = *static_cast<ScriptedCompositor*>(wl_resource_get_user_data(manager));
  constexpr auto byUUID = static_cast<std::uint32_t>(wayland::PlasmaWindowManagementRequest::windowByUUID);
  if (!compositor.isPlasma() || request != byUUID) return 0;
  for (auto& window : compositor.windows_) {
    if (window.uuid != arguments[1].s) continue;
    auto* object = compositor.addObject(window, wl_resource_get_client(manager), arguments[0].n);
    compositor.describe(window, object);
  }
  return 0;
}

int ScriptedCompositor::windowRequest(const void*, void* target, std::uint32_t request, const wl_message*,
                                      wl_argument*) {
  auto* object = static_cast<wl_resource*>(target);
  auto& compositor = *static_cast<ScriptedCompositor*>(wl_resource_get_user_data(object));
  const auto close = compositor.isPlasma()
                         ? static_cast<std::uint32_t>(wayland::PlasmaWindowRequest::close)
                         : static_cast<std::uint32_t>(wayland::ForeignToplevelRequest::close);
  constexpr auto destroy = static_cast<std::uint32_t>(wayland::ForeignToplevelRequest::destroy);
  if (request == close) {
    if (const auto* window = compositor.windowOf(object)) compositor.closeRequests.push_back(window->appID);
  } else if (request == destroy) {  // the same number in both protocols
    wl_resource_destroy(object);
  }
  return 0;
}

ScriptedCompositor::Window* ScriptedCompositor::windowOf(const wl_resource* object) {
  const auto holds = [object](const Window& window) {
    return std::ranges::find(window.objects, object) != window.objects.end();
  };
  const auto found = std::ranges::find_if(windows_, holds);
  return found == windows_.end() ? nullptr : &*found;
}

}  // namespace vorli::linuxhost

#include "linux/applications/WindowProtocol.h"

#include <algorithm>
#include <wayland-client.h>

namespace vorli::linuxhost {

WindowProtocol::WindowProtocol(const Global& global, const wl_interface& manager, const Requests& requests,
                               std::uint32_t& lastID)
    : requests_(requests),
      lastID_(lastID),
      manager_(
          static_cast<wl_proxy*>(wl_registry_bind(global.registry, global.name, &manager, global.version))) {
  wl_proxy_add_dispatcher(manager_, dispatch, nullptr, this);
}

WindowProtocol::~WindowProtocol() {
  for (const auto& [proxy, toplevel] : toplevels_) wl_proxy_destroy(proxy);
  wl_proxy_destroy(manager_);
}

std::vector<NativeWindow> WindowProtocol::windows() const {
  std::vector<NativeWindow> complete;
  for (const auto& [proxy, toplevel] : toplevels_) {
    if (toplevel.isComplete) complete.push_back(toplevel.window);
  }
  std::ranges::sort(complete, {}, &NativeWindow::id);
  return complete;
}

void WindowProtocol::requestClose(std::uint32_t id) {
  for (const auto& [proxy, toplevel] : toplevels_) {
    if (toplevel.window.id == id) wl_proxy_marshal_array(proxy, requests_.close, nullptr);
  }
}

void WindowProtocol::add(wl_proxy* window) {
  toplevels_[window].window.id = ++lastID_;
  wl_proxy_add_dispatcher(window, dispatch, nullptr, this);
}

void WindowProtocol::remove(wl_proxy* window) {
  toplevels_.erase(window);
  wl_proxy_marshal_array(window, requests_.destroy, nullptr);
  wl_proxy_destroy(window);
}

void WindowProtocol::end() {
  hasEnded_ = true;
  while (!toplevels_.empty()) remove(toplevels_.begin()->first);
}

int WindowProtocol::dispatch(const void*, void* target, std::uint32_t event, const wl_message*,
                             wl_argument* arguments) {
  auto* proxy = static_cast<wl_proxy*>(target);
  auto& self = *static_cast<WindowProtocol*>(wl_proxy_get_user_data(proxy));
  if (proxy == self.manager_) {
    self.managerEvent(event, arguments);
  } else if (const auto found = self.toplevels_.find(proxy); found != self.toplevels_.end()) {
    self.windowEvent(proxy, found->second, event, arguments);
  }
  return 0;
}

}  // namespace vorli::linuxhost

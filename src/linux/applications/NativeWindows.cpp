#include "linux/applications/NativeWindows.h"

#include "linux/applications/ForeignToplevels.h"
#include "linux/applications/PlasmaWindows.h"
#include "linux/applications/WaylandProtocols.h"

#include <utility>
#include <wayland-client.h>

namespace vorli::linuxhost {

NativeWindows::NativeWindows(Scheduler& scheduler, std::string socket, std::function<void()> changed)
    : changed_(std::move(changed)),
      connection_(
          scheduler, std::move(socket),
          {.globalSeen = [this](wl_registry* registry, std::uint32_t name, std::string_view interface,
                                std::uint32_t version) { globalSeen(registry, name, interface, version); },
           .eventsRead = [this] { update(); },
           .lost = [this] { connectionLost(); }}) {}

NativeWindows::~NativeWindows() {
  if (answer_) wl_callback_destroy(answer_);
}

// Prefers Plasma's own protocol, which reports the process of each window.
void NativeWindows::globalSeen(wl_registry* registry, std::uint32_t name, std::string_view interface,
                               std::uint32_t version) {
  if (interface == wayland::plasmaWindowManagement.name && version >= PlasmaWindows::oldestVersion) {
    protocol_ = std::make_unique<PlasmaWindows>(registry, name, version, lastID_);
  } else if (interface == wayland::foreignToplevelManager.name && !protocol_) {
    protocol_ = std::make_unique<ForeignToplevels>(registry, name, lastID_);
  } else {
    return;
  }
  answers_ = 0;
  if (!answer_) askForAnswer();
}

void NativeWindows::askForAnswer() {
  static const wl_callback_listener listener{
      .done = [](void* self, wl_callback*, std::uint32_t) { static_cast<NativeWindows*>(self)->answered(); }};
  answer_ = wl_display_sync(connection_.display());
  wl_callback_add_listener(answer_, &listener, this);
}

void NativeWindows::answered() {
  wl_callback_destroy(std::exchange(answer_, nullptr));
  if (++answers_ < neededAnswers) askForAnswer();
}

void NativeWindows::connectionLost() {
  if (answer_) wl_callback_destroy(std::exchange(answer_, nullptr));
  protocol_.reset();
  answers_ = 0;
  update();
}

// Reports only changes of the values in `NativeWindow`; titles, which change often, are not among them.
void NativeWindows::update() {
  const bool canSee = canSeeWindows();
  auto windows = canSee ? protocol_->windows() : std::vector<NativeWindow>();
  const bool isSame = std::exchange(couldSeeWindows_, canSee) == canSee && windows == windows_;
  windows_ = std::move(windows);
  if (!isSame) changed_();
}

void NativeWindows::requestClose(std::uint32_t id) {
  if (!protocol_) return;
  protocol_->requestClose(id);
  connection_.flush();
}

}  // namespace vorli::linuxhost

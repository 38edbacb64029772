#include "linux/applications/WaylandConnection.h"

#include "posix/FileDescriptor.h"

#include <QSocketNotifier>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>
#include <wayland-client.h>

namespace vorli::linuxhost {
namespace {

constexpr double readPause = 0.25;
constexpr double firstRetryPause = 1.0;
constexpr double longestRetryPause = 64.0;

// Replaces the library's own call, which waits if a compositor hangs and its queue of connections is full.
int connectWithoutWaiting(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) return -1;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  posix::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return -1;
  if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return -1;
  return socket.release();
}

}  // namespace

WaylandConnection::WaylandConnection(Scheduler& scheduler, std::string socket, Handlers handlers)
    : scheduler_(scheduler),
      socket_(std::move(socket)),
      handlers_(std::move(handlers)),
      retryPause_(firstRetryPause) {
  connect();
}

WaylandConnection::~WaylandConnection() {
  scheduler_.cancel(timer_);
  disconnect();
}

void WaylandConnection::connect() {
  const int socket = connectWithoutWaiting(socket_);
  display_ = socket < 0 ? nullptr : wl_display_connect_to_fd(socket);
  if (!display_) return connectLater();
  connectedAt_ = scheduler_.now();
  static const wl_registry_listener listener{
      .global =
          [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
             std::uint32_t version) {
            static_cast<WaylandConnection*>(self)->handlers_.globalSeen(registry, name, interface, version);
          },
      .global_remove = [](void*, wl_registry*, std::uint32_t) {}};
  registry_ = wl_display_get_registry(display_);
  wl_registry_add_listener(registry_, &listener, this);
  notifier_ = std::make_unique<QSocketNotifier>(wl_display_get_fd(display_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { readySeen(); });
  flush();
}

void WaylandConnection::flush() {
  if (display_) wl_display_flush(display_);  // what does not fit now is sent with the next requests
}

void WaylandConnection::readySeen() {
  const double early = nextReadAt_ - scheduler_.now();
  if (early <= 0.0) return read();
  notifier_->setEnabled(false);
  timer_ = scheduler_.after(early, [this] {
    timer_ = 0;
    notifier_->setEnabled(true);
    read();
  });
}

void WaylandConnection::read() {
  nextReadAt_ = scheduler_.now() + readPause;
  while (wl_display_prepare_read(display_) != 0) {
    if (wl_display_dispatch_pending(display_) < 0) return lose();
  }
  if (wl_display_read_events(display_) < 0 || wl_display_dispatch_pending(display_) < 0) return lose();
  handlers_.eventsRead();
  flush();
}

void WaylandConnection::lose() {
  handlers_.lost();
  disconnect();
  // A compositor that ends each connection after a moment is treated like one that accepts none.
  if (scheduler_.now() - connectedAt_ > longestRetryPause) retryPause_ = firstRetryPause;
  connectLater();
}

void WaylandConnection::disconnect() {
  if (notifier_) {
    notifier_->setEnabled(false);
    notifier_.release()->deleteLater();  // its signal may be the one that is being delivered
  }
  if (!display_) return;
  wl_registry_destroy(std::exchange(registry_, nullptr));
  wl_display_disconnect(std::exchange(display_, nullptr));
}

void WaylandConnection::connectLater() {
  if (retryPause_ > longestRetryPause) return;
  timer_ = scheduler_.after(
      std::exchange(retryPause_, 2.0 * retryPause_),
      [this] {
        timer_ = 0;
        connect();
      },
      Scheduler::Precision::coarse);
}

}  // namespace vorli::linuxhost

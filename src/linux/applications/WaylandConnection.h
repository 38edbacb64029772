#pragma once

#include "base/Scheduler.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QSocketNotifier;
struct wl_display;
struct wl_registry;

namespace vorli::linuxhost {

/// A separate connection of this program to the compositor. Never waits for it, and reads its messages at
/// most four times a second, because windows may change their titles at any rate. Reconnects after a loss,
/// with growing pauses, and gives up when the compositor does not return. Main thread.
class WaylandConnection {
 public:
  struct Handlers {
    /// Called from the main loop for each object of the compositor that may be bound.
    std::function<void(wl_registry* registry, std::uint32_t name, std::string_view interface,
                       std::uint32_t version)>
        globalSeen;
    /// Called after all events of one reading were delivered.
    std::function<void()> eventsRead;
    /// Called when the connection is lost. All its objects must be destroyed before this returns.
    std::function<void()> lost;
  };

  /// `socket` is the path at which the compositor listens.
  WaylandConnection(Scheduler& scheduler, std::string socket, Handlers handlers);
  /// All objects of the connection must be destroyed before.
  ~WaylandConnection();
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;

  /// Null while there is no connection.
  wl_display* display() const { return display_; }
  /// Sends the queued requests.
  void flush();

 private:
  void connect();
  void readySeen();
  void read();
  void lose();
  void disconnect();
  void connectLater();

  Scheduler& scheduler_;
  const std::string socket_;
  const Handlers handlers_;
  wl_display* display_ = nullptr;
  wl_registry* registry_ = nullptr;
  std::unique_ptr<QSocketNotifier> notifier_;
  double nextReadAt_ = 0.0;
  double connectedAt_ = 0.0;
  double retryPause_;
  Scheduler::TimerId timer_ = 0;  // timer of the next reading or the next attempt to connect
};

}  // namespace vorli::linuxhost

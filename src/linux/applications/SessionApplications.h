#pragma once

#include "base/Scheduler.h"
#include "linux/applications/ApplicationUnits.h"
#include "linux/applications/BusNames.h"
#include "linux/applications/CompositorClients.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Reports the processes of a Wayland session that may be applications although their windows may be
/// invisible to this program: those that it started as applications, those that own an application's name on
/// the bus, and those that are connected to the compositor. Main thread.
class SessionApplications {
 public:
  struct Handlers {
    std::function<bool(std::string_view applicationID)> isApplication;
    /// Called for a process that was started as an application or is connected to the compositor. The former
    /// is reported at once and again a moment later, when it has become its program.
    std::function<void(std::int32_t pid)> processSeen;
    std::function<void(std::int32_t pid, const std::string& applicationID)> ownerSeen;
    std::function<void(std::int32_t pid, const QuitAction& action)> quitActionSeen;
  };

  /// Calls `processSeen` inside the constructor for existing processes.
  SessionApplications(Scheduler& scheduler, const std::string& compositorSocket, Handlers handlers);
  ~SessionApplications();

  /// Looks for new clients of the compositor in a later turn of the main loop, unless the last search was
  /// less than 15 seconds ago. Nothing announces a client without windows, so call this at each tick.
  void lookForClients();

  /// Looks for the process of this window a moment later, unless it has done so for this or a newer window:
  /// even a window of a known program may belong to another process of it. 0 means no window.
  void lookForOwnerOf(std::uint32_t window);

  /// The current clients of the compositor; see `CompositorClients::look`.
  std::optional<std::set<std::int32_t>> clientsNow() { return clients_.look(); }
  /// See `CompositorClients::isClient`.
  std::optional<bool> isClient(std::int32_t pid) const { return clients_.isClient(pid); }

 private:
  void lookSoon();
  void look();

  Scheduler& scheduler_;
  const Handlers handlers_;
  CompositorClients clients_;
  std::set<std::int32_t> known_;    // clients at the last look
  std::set<std::int32_t> started_;  // processes of units since the last look
  double lastLook_ = 0.0;
  std::uint32_t lastWindow_ = 0;  // the newest one whose process was looked for
  Scheduler::TimerId timer_ = 0;
  std::unique_ptr<ApplicationUnits> units_;
  std::unique_ptr<BusNames> busNames_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "base/Scheduler.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;
struct xcb_connection_t;

namespace vorli::linuxhost {

/// Reports the processes that have an icon of the old kind (XEmbed) in the tray. Only the tray receives the
/// request to show such an icon; other programs see a window that moves from the root window into one of the
/// tray's. The X server reports such a move only together with all other changes of top-level windows, so the
/// events are read at most once a second; while no window is opened, moved or closed, there are none. Reports
/// nothing without an X server or such a tray. Main thread; a look takes a few round trips to the server.
class EmbeddedIconOwners {
 public:
  /// Calls `ownerSeen` from the main loop: in a second for existing icons, and about a second after each new
  /// one.
  EmbeddedIconOwners(Scheduler& scheduler, std::function<void(std::int32_t pid)> ownerSeen);
  ~EmbeddedIconOwners();
  EmbeddedIconOwners(const EmbeddedIconOwners&) = delete;
  EmbeddedIconOwners& operator=(const EmbeddedIconOwners&) = delete;

  struct Place {
    std::uint32_t window;
    std::uint32_t parent;
  };

  /// Returns the windows that are inside of one of the tray's and belong to another client. `trayWindow` is
  /// any window of the tray, or 0 without a tray; the bits of `idMask` number the windows of one client.
  static std::vector<std::uint32_t> guestsOfTray(const std::vector<Place>& places, std::uint32_t trayWindow,
                                                 std::uint32_t idMask);

 private:
  std::uint32_t intern(const std::string& name);
  std::uint32_t currentTrayWindow();
  void lookSoon();
  void look();
  std::vector<Place> everyPlace();
  void takeMoves(std::vector<Place>& places);
  void report(const std::vector<Place>& places);

  Scheduler& scheduler_;
  const std::function<void(std::int32_t)> ownerSeen_;
  xcb_connection_t* connection_ = nullptr;
  std::uint32_t root_ = 0;
  std::uint32_t idMask_ = 0;
  std::uint32_t traySelection_ = 0;  // atoms
  std::uint32_t iconMark_ = 0;
  std::unique_ptr<QSocketNotifier> notifier_;
  bool isFirstLook_ = true;
  Scheduler::TimerId timer_ = 0;
};

}  // namespace vorli::linuxhost

#pragma once

#include "linux/bus/Library.h"
#include "linux/helper/SystemBus.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// Tracks whether the daemon can be reached. Asks only the bus, so that nothing is started. Runs on the bus's
/// thread.
class HelperNameWatch final : public SystemBus::Client {
 public:
  enum class Presence { unknown, noBus, absent, activatable, owned };

  static std::shared_ptr<HelperNameWatch> on(SystemBus& bus);

  /// The last known state. Thread-safe.
  Presence presence() const { return presence_; }
  /// False only when it is known that the daemon cannot be reached; true while the state is unknown.
  /// Thread-safe.
  bool mayLeadToDaemon() const;

  /// Asks the bus again, then calls `done`.
  void refresh(std::function<void()> done);
  /// Sets the handler that is called whenever the daemon or the bus becomes reachable or stops being so.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  HelperNameWatch() = default;
  void askForOwner();
  void askForActivatables();
  void answered();
  void ownerChanged(sdbus::Message& signal);
  Presence answeredPresence() const;
  void publish(Presence presence);

  std::atomic<Presence> presence_{Presence::unknown};
  std::function<void()> changed_;
  std::unique_ptr<sdbus::IProxy> bus_;
  std::vector<sdbus::Slot> matches_;
  std::vector<std::function<void()>> waiting_;
  int asking_ = 0;
  // Answers of the bus; empty until it has answered.
  std::optional<bool> owned_;
  std::optional<bool> activatable_;
};

}  // namespace vorli::linuxhost

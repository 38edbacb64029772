#pragma once

#include "linux/SystemBus.h"

#include <atomic>
#include <functional>
#include <memory>
#include <sdbus-c++/sdbus-c++.h>
#include <vector>

namespace vorli::linuxhost {

/// Whether the daemon can be reached, from the bus's own knowledge: nothing is started to find out. Works on
/// the bus's thread.
class HelperNameWatch final : public SystemBus::Client {
 public:
  enum class Presence { unknown, noBus, absent, activatable, owned };

  static std::shared_ptr<HelperNameWatch> on(SystemBus& bus);

  /// As last heard. Any thread.
  Presence presence() const { return presence_; }
  /// False only when it is known that nothing leads to the daemon: what was never heard of may still be
  /// there. Any thread.
  bool mayLeadToDaemon() const;

  /// Asks the bus anew, then calls `done`.
  void refresh(std::function<void()> done);
  /// Called whenever the daemon, or the bus, becomes reachable or stops to be.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  HelperNameWatch() = default;
  void askForOwner();
  void askForActivatables();
  void answered();
  void ownerChanged(sdbus::Message& signal);
  void publish(Presence presence);

  std::atomic<Presence> presence_{Presence::unknown};
  std::function<void()> changed_;
  std::unique_ptr<sdbus::IProxy> bus_;
  std::vector<sdbus::Slot> matches_;
  std::vector<std::function<void()>> waiting_;
  int asking_ = 0;
  bool owned_ = false;
  bool activatable_ = false;
};

}  // namespace vorli::linuxhost

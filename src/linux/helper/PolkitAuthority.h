#pragma once

#include "linux/bus/Library.h"
#include "linux/helper/SystemBus.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace vorli::linuxhost {

/// Asks polkit what this program may do. The subject is always our own name on the bus, never a process
/// number. Runs on the bus's thread.
class PolkitAuthority final : public SystemBus::Client {
 public:
  enum class Interaction { none, mayAskTheUser };
  /// `needsPassword`: allowed after authentication. `unknownAction`: polkit does not know the action.
  enum class Verdict { authorized, needsPassword, refused, dismissed, unknownAction, unreachable };

  /// Without interaction the answer takes at most 3 seconds. With it, the answer waits for the user.
  void check(const std::string& action, Interaction interaction, std::function<void(Verdict)> done);

  /// Sets the handler that is called when rules or sessions have changed.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  void finish(std::uint64_t check, Verdict verdict);

  std::function<void()> changed_;
  std::unique_ptr<sdbus::IProxy> authority_;
  sdbus::Slot match_;
  std::string ownName_;
  std::map<std::uint64_t, std::function<void(Verdict)>> out_;
  std::uint64_t lastCheck_ = 0;
};

}  // namespace vorli::linuxhost

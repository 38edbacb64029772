#pragma once

#include "daemon/Callers.h"

#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// Asks the bus itself who a caller is. The library's own calls look a caller up by its pid, which another
/// process may have by then.
class BusCallers final : public daemon::Callers {
 public:
  explicit BusCallers(sdbus::IConnection& connection);
  ~BusCallers() override;

  void userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) override;
  void processOf(const std::string& caller, daemon::UserId user,
                 OnceReply<std::shared_ptr<daemon::CallerProcess>> reply) override;

 private:
  std::unique_ptr<sdbus::IProxy> bus_;
};

}  // namespace vorli::linuxhost

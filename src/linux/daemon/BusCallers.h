#pragma once

#include "daemon/Callers.h"

#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// Asks the bus itself who a caller is. The library's own calls for it go by way of the caller's pid, which
/// another process may bear by the time it is looked up.
class BusCallers final : public daemon::Callers {
 public:
  explicit BusCallers(sdbus::IConnection& connection);
  ~BusCallers() override;

  void userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) override;

 private:
  std::unique_ptr<sdbus::IProxy> bus_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "daemon/Authority.h"

#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// Asks polkit, naming the caller by its name on the bus and by nothing else, and without letting polkit ask
/// the user: a password takes longer than the application waits, so it asks for itself beforehand.
class PolkitAuthority final : public daemon::Authority {
 public:
  explicit PolkitAuthority(sdbus::IConnection& connection);
  ~PolkitAuthority() override;

  void check(const std::string& caller, std::string_view action, const std::string& subject,
             OnceReply<daemon::Verdict> reply) override;

 private:
  std::unique_ptr<sdbus::IProxy> polkit_;
};

}  // namespace vorli::linuxhost

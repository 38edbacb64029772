#pragma once

#include "daemon/Authority.h"

#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// Asks polkit about a caller, which is identified by its bus name and nothing else. Polkit may not prompt
/// the user: a password takes longer than the application waits, so the application prompts beforehand.
class CallerAuthority final : public daemon::Authority {
 public:
  explicit CallerAuthority(sdbus::IConnection& connection);
  ~CallerAuthority() override;

  void check(const std::string& caller, std::string_view action, const std::string& subject,
             OnceReply<daemon::Verdict> reply) override;

 private:
  std::unique_ptr<sdbus::IProxy> polkit_;
};

}  // namespace vorli::linuxhost

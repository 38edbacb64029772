#pragma once

#include "daemon/Authority.h"

namespace vorli::machost {

/// Grants what the signature of the clients allows. The user approved the daemon for one application, so a
/// client that satisfies the listener's code-signing requirement may do everything. Where no requirement can
/// be set, the client may be any program: it may purge and flush, which does no harm, but may not move files.
class ClientAuthority final : public daemon::Authority {
 public:
  enum class Signature { required, unknown };

  explicit ClientAuthority(Signature signature) : signature_(signature) {}

  void check(const std::string& caller, std::string_view action, const std::string& subject,
             OnceReply<daemon::Verdict> reply) override;

 private:
  const Signature signature_;
};

}  // namespace vorli::machost

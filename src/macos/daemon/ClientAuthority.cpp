#include "macos/daemon/ClientAuthority.h"

#include "daemon/Request.h"

#include <utility>

namespace vorli::machost {

void ClientAuthority::check(const std::string&, std::string_view action, const std::string&,
                            OnceReply<daemon::Verdict> reply) {
  const bool isMove = action == rulesOf(daemon::Method::moveLaunchAgentPlist).action;
  const bool isDenied = isMove && signature_ == Signature::unknown;
  std::move(reply)(isDenied ? daemon::Verdict::denied : daemon::Verdict::granted);
}

}  // namespace vorli::machost

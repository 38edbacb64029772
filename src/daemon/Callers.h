#pragma once

#include "base/OnceReply.h"
#include "daemon/Request.h"

#include <optional>
#include <string>

namespace vorli::daemon {

/// Who stands behind a name on the bus, by the bus's own word.
class Callers {
 public:
  virtual ~Callers() = default;

  /// Nothing when the bus cannot tell, or the caller has gone. Answered on the main thread.
  virtual void userOf(const std::string& caller, OnceReply<std::optional<UserId>> reply) = 0;
};

}  // namespace vorli::daemon

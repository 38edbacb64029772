#pragma once

#include "base/OnceReply.h"
#include "daemon/Request.h"

#include <memory>
#include <optional>
#include <string>

namespace vorli::daemon {

/// The process of a caller, held so that a reuse of its number is noticed.
class CallerProcess {
 public:
  virtual ~CallerProcess() = default;

  /// False once the process has ended.
  virtual bool isThere() = 0;
};

/// Looks up the user and the process behind a bus name, as reported by the bus itself. Answers on the main
/// thread.
class Callers {
 public:
  virtual ~Callers() = default;

  /// Empty when the bus does not know the user, or the caller has disconnected.
  virtual void userOf(const std::string& caller, OnceReply<std::optional<UserId>> reply) = 0;

  /// The process that the bus reports for `caller`. Null when it has ended, when one of its user ids differs
  /// from `user`, or when it belongs to another user's session, whose rights are not the caller's own.
  virtual void processOf(const std::string& caller, UserId user,
                         OnceReply<std::shared_ptr<CallerProcess>> reply) = 0;
};

}  // namespace vorli::daemon

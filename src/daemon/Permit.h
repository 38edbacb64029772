#pragma once

#include "daemon/Request.h"

namespace vorli::daemon {

/// Proof that a request of one user was allowed. Only the request desk creates permits and every command
/// takes one, so no command can run unchecked.
class Permit {
 public:
  Permit(Permit&&) = default;
  Permit& operator=(Permit&&) = default;

  UserId user() const { return user_; }

 private:
  friend class RequestDesk;
  friend class PermitForTests;
  explicit Permit(UserId user) : user_(user) {}

  UserId user_;
};

}  // namespace vorli::daemon

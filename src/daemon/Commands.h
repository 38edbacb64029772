#pragma once

#include "base/OnceReply.h"
#include "contract/HelperProtocol.h"
#include "daemon/MoveOrder.h"
#include "daemon/Permit.h"

#include <cstdint>

namespace vorli::daemon {

/// The daemon's commands. Called and answered on the main thread, which they never block.
class Commands {
 public:
  virtual ~Commands() = default;

  virtual void purgeMemory(Permit permit, OnceReply<HelperReply> reply) = 0;
  virtual void flushDNS(Permit permit, OnceReply<HelperReply> reply) = 0;
  virtual void continueProcess(Permit permit, std::int32_t pid, OnceReply<HelperReply> reply) = 0;
  virtual void moveStartupItem(Permit permit, MoveOrder order, OnceReply<HelperReply> reply) = 0;
};

}  // namespace vorli::daemon

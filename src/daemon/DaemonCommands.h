#pragma once

#include "base/Scheduler.h"
#include "daemon/Commands.h"
#include "daemon/DNSFlush.h"
#include "daemon/MemoryControl.h"
#include "daemon/ProcessControl.h"
#include "daemon/SingleFlight.h"
#include "daemon/StartupFolders.h"
#include "daemon/Workers.h"

namespace vorli::daemon {

/// Implements the commands with the system's operations. Blocking work runs on a worker; purges and flushes
/// run one at a time. Main thread.
class DaemonCommands final : public Commands {
 public:
  /// The result of a purge that ended less than this many seconds ago is reused.
  static constexpr double freshPurgeSeconds = 5.0;

  struct System {
    MemoryControl& memory;
    DNSFlush& dns;
    ProcessControl& processes;
    StartupFolders& folders;
  };

  DaemonCommands(Scheduler& scheduler, Workers& workers, System system)
      : scheduler_(scheduler), workers_(workers), system_(system), purge_(scheduler), flush_(scheduler) {}

  void purgeMemory(Permit permit, OnceReply<HelperReply> reply) override;
  void flushDNS(Permit permit, OnceReply<HelperReply> reply) override;
  void continueProcess(Permit permit, std::int32_t pid, OnceReply<HelperReply> reply) override;
  void moveStartupItem(Permit permit, MoveOrder order, OnceReply<HelperReply> reply) override;

 private:
  void runOnWorker(UniqueFunction<HelperReply()> work, OnceReply<HelperReply> reply);

  Scheduler& scheduler_;
  Workers& workers_;
  System system_;
  SingleFlight purge_;
  SingleFlight flush_;
};

}  // namespace vorli::daemon

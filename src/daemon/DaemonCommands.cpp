#include "daemon/DaemonCommands.h"

#include "contract/ExitCode.h"
#include "daemon/ContinueProcess.h"
#include "daemon/MemoryPurge.h"

#include <exception>
#include <string>
#include <utility>

namespace vorli::daemon {

namespace {

// Keeps exceptions inside the worker's thread: they would end the process in the middle of other callers'
// work.
HelperReply guarded(UniqueFunction<HelperReply()>& work) {
  try {
    return work();
  } catch (const std::exception& error) {
    return {helper::exit_code::internalError, std::string("Internal error: ") + error.what()};
  } catch (...) {
    return {helper::exit_code::internalError, "Internal error"};
  }
}

}  // namespace

void DaemonCommands::purgeMemory(Permit, OnceReply<HelperReply> reply) {
  if (const auto& last = purge_.last(); last && !purge_.isRunning()) {
    const double age = scheduler_.now() - last->endedAt;
    if (age < freshPurgeSeconds) {
      const bool succeeded = last->reply.exitCode == helper::exit_code::done;
      std::move(reply)(succeeded ? HelperReply{helper::exit_code::done,
                                               "Purged " + std::to_string(static_cast<int>(age)) + " s ago"}
                                 : last->reply);
      return;
    }
  }
  purge_.join(std::move(reply), [this](OnceReply<HelperReply> done) {
    runOnWorker([this] { return MemoryPurge(system_.memory, scheduler_).run(); }, std::move(done));
  });
}

void DaemonCommands::flushDNS(Permit, OnceReply<HelperReply> reply) {
  flush_.join(std::move(reply), [this](OnceReply<HelperReply> done) { system_.dns.run(std::move(done)); });
}

void DaemonCommands::continueProcess(Permit permit, std::int32_t pid, OnceReply<HelperReply> reply) {
  runOnWorker([this, permit = std::move(permit),
               pid] { return daemon::continueProcess(system_.processes, permit, pid); },
              std::move(reply));
}

void DaemonCommands::moveStartupItem(Permit, MoveOrder order, OnceReply<HelperReply> reply) {
  runOnWorker([this, order = std::move(order)] { return system_.folders.move(order); }, std::move(reply));
}

void DaemonCommands::runOnWorker(UniqueFunction<HelperReply()> work, OnceReply<HelperReply> reply) {
  workers_.post([this, work = std::move(work), reply = std::move(reply)]() mutable {
    auto result = guarded(work);
    scheduler_.post([reply = std::move(reply), result = std::move(result)]() mutable {
      std::move(reply)(std::move(result));
    });
  });
}

}  // namespace vorli::daemon

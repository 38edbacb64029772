#include "polish/HelperWorkRace.h"

#include "base/DeadlineRace.h"
#include "polish/PopoverLog.h"

#include <utility>

namespace vorli {

namespace {

// Neither the flush nor an exit code counts: a daemon that could not purge has still been reached.
bool wasReached(const HelperReply& purge) {
  return purge.output != "Helper purgeMemory timed out" && purge.output != "No helper connection";
}

}  // namespace

HelperWorkRace::HelperWorkRace(Scheduler& scheduler, HelperManager& helperManager,
                               ports::MemoryCounters& memory, const ports::CalendarClock& calendar)
    : scheduler_(scheduler),
      helperManager_(helperManager),
      memory_(memory),
      calendar_(calendar),
      tasks_(scheduler) {}

Task<bool> HelperWorkRace::runHelperWorkRacingDisplayBudget(HelperWorkRequest request) {
  request.snapshotBox->snapshot = sampleMemory(memory_, calendar_);
  if (!request.helperReady) co_return false;

  const auto box = std::make_shared<HelperResultBox>();
  tasks_.spawn(work(request.audioActive, box));
  DeadlineRace<HelperWorkResult> race(scheduler_, request.minDisplayTime);
  box->whenFilled(race.reply());
  const auto result = co_await race;

  if (!result) {
    popoverLog.log(
        "handleTap: helper exceeded %{public}fs display budget; treating as optimistic success and letting "
        "actual reclaim land in background",
        request.minDisplayTime);
    co_return true;
  }
  const bool reachable = wasReached(result->purge);
  popoverLog.log(
      "handleTap: helper calls done in budget. dns exit=%{public}d purge exit=%{public}d "
      "reachable=%{bool,public}d. Elapsed %{public}ss",
      result->dns.exitCode, result->purge.exitCode, reachable,
      twoDecimals(scheduler_.now() - request.startedAt));
  co_return reachable;
}

// Both calls run at the same time: a slow purge must not delay the flush.
Task<> HelperWorkRace::work(bool audioActive, std::shared_ptr<HelperResultBox> box) {
  const auto replies = std::make_shared<HelperWorkResult>();
  const TaskHandle dns = tasks_.spawn(flushDNS(replies));
  TaskHandle purge;
  if (audioActive) {
    replies->purge = {0, "Skipped (audio active)"};
  } else {
    purge = tasks_.spawn(purgeMemory(replies));
  }

  co_await dns.finished();
  co_await purge.finished();
  box->fill(std::move(*replies));
}

Task<> HelperWorkRace::flushDNS(std::shared_ptr<HelperWorkResult> replies) {
  replies->dns = co_await helperManager_.flushDNS();
}

Task<> HelperWorkRace::purgeMemory(std::shared_ptr<HelperWorkResult> replies) {
  replies->purge = co_await helperManager_.purgeMemory();
}

}  // namespace vorli

#include "startup/PlistControls.h"

#include "contract/ExitCode.h"
#include "contract/SystemStartupFolders.h"

#include <utility>

namespace vorli {
namespace {

// The work is done by functions of the ports alone: it runs on the worker and may outlive the control.

// Loads the job even if it is already enabled, but not if its file could not be moved.
void resume(ports::StartupFiles& files, ports::LaunchControl& launchControl, const std::string& plistURL,
            const std::string& paused) {
  if (files.exists(paused) && files.moveWithoutReplacing(paused, plistURL) != ports::MoveResult::moved)
    return;
  launchControl.load(plistURL);
}

// Unloads the job first, because the service manager knows it by the name from which it was loaded.
void putAway(ports::StartupFiles& files, ports::LaunchControl& launchControl, const std::string& plistURL,
             const std::string& target) {
  launchControl.unload(plistURL);
  if (files.exists(plistURL)) files.moveWithoutReplacing(plistURL, target);
}

}  // namespace

std::string PlistControl::pausedName(const std::string& plistURL) {
  return plistURL + std::string(helper::disabledExtension);
}

std::string PlistControl::removedName(const std::string& plistURL) {
  return plistURL + std::string(helper::removedExtension);
}

Task<> PlistControl::commitRemoval(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, removed = removedName(plistURL)] { files.remove(removed); };
  co_await worker_.run(std::move(work));
}

Task<StartupControl::Outcome> UserPlistControl::setEnabled(Enablement to, std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, to, plistURL] {
    if (to == Enablement::enabled) {
      resume(files, launchControl, plistURL, pausedName(plistURL));
    } else {
      putAway(files, launchControl, plistURL, pausedName(plistURL));
    }
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserPlistControl::remove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, plistURL] {
    putAway(files, launchControl, plistURL, removedName(plistURL));
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserPlistControl::undoRemove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, plistURL] {
    files.moveWithoutReplacing(removedName(plistURL), plistURL);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> HelperPlistControl::setEnabled(Enablement to, std::string plistURL) {
  auto from = pausedName(plistURL);
  if (to == Enablement::paused) std::swap(from, plistURL);
  co_return co_await move(std::move(from), std::move(plistURL));
}

Task<StartupControl::Outcome> HelperPlistControl::remove(std::string plistURL) {
  auto removed = removedName(plistURL);
  co_return co_await move(std::move(plistURL), std::move(removed));
}

// The next scan shows whether the helper did it.
Task<StartupControl::Outcome> HelperPlistControl::undoRemove(std::string plistURL) {
  auto removed = removedName(plistURL);
  co_await helperManager_.moveLaunchAgentPlist(std::move(removed), std::move(plistURL));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> HelperPlistControl::move(std::string from, std::string to) {
  const auto reachability = co_await helperManager_.ensureHelperAlive();
  if (reachability == HelperReachability::needsApproval) co_return Outcome::notApproved;
  if (reachability == HelperReachability::unreachable) co_return Outcome::notResponding;

  auto reply = co_await helperManager_.moveLaunchAgentPlist(from, to);
  if (reply.exitCode != helper::exit_code::done) {
    co_await helperManager_.reinstallIfStale(Reinstall::forced);
    reply = co_await helperManager_.moveLaunchAgentPlist(from, to);
  }
  co_return reply.exitCode == helper::exit_code::done ? Outcome::done : Outcome::notResponding;
}

}  // namespace vorli

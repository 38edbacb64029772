#include "insights/SuspendedAppsManager.h"

#include "contract/ExitCode.h"
#include "contract/HelperProtocol.h"

#include <utility>

namespace vorli {

SuspendedAppsManager::SuspendedAppsManager(Scheduler& scheduler, HelperManager& helper,
                                           ports::Workspace& workspace)
    : helper_(helper), tasks_(scheduler) {
  using ports::ApplicationEvent;
  activations_ = workspace.subscribe(ApplicationEvent::activated, [this](const auto& application) {
    const auto pid = application.processIdentifier;
    if (suspendedPIDs->contains(pid)) tasks_.spawn(resume(pid));
  });
  terminations_ = workspace.subscribe(ApplicationEvent::terminated, [this](const auto& application) {
    forget(application.processIdentifier);
  });
}

Task<> SuspendedAppsManager::resumeAll() {
  const std::set<std::int32_t> pids = suspendedPIDs;
  for (const auto pid : pids) {
    if (suspendedPIDs->contains(pid)) co_await resume(pid);
  }
}

Task<> SuspendedAppsManager::resume(std::int32_t pid) {
  const HelperReply reply = co_await helper_.killPID(pid, helper::continueSignal);
  if (reply.exitCode == helper::exit_code::done) forget(pid);
}

void SuspendedAppsManager::forget(std::int32_t pid) {
  auto pids = suspendedPIDs.get();
  if (pids.erase(pid) > 0) suspendedPIDs = std::move(pids);
  auto info = suspendedInfo.get();
  if (info.erase(pid) > 0) suspendedInfo = std::move(info);
}

}  // namespace vorli

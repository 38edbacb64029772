#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/UniqueFunction.h"
#include "helper/HelperManager.h"
#include "ports/ApplicationBundle.h"
#include "ports/KeyValueStore.h"

namespace vorli {

/// Compares the running build with that of the last launch, and stores it for the next one. True when a
/// different build was stored; the first launch does not count as a change. Main thread.
bool buildChanged(const ports::ApplicationBundle& bundle, ports::KeyValueStore& defaults);

/// Makes sure at launch that the daemon answers: repairs it if it is stale, then forces a repair, and calls
/// `notifyHelperBroken` if neither helped. Never causes a password prompt. Main thread.
Task<> helperLaunchTask(Scheduler& scheduler, HelperManager& manager, Reinstall force,
                        UniqueFunction<void()> notifyHelperBroken);

}  // namespace vorli

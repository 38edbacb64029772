#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/UniqueFunction.h"
#include "helper/HelperManager.h"
#include "ports/ApplicationBundle.h"
#include "ports/KeyValueStore.h"

namespace vorli {

/// Compares the running build with the one of the last launch, and stores it as the new last one. True when a
/// build was stored and is another; the first launch is no change. Main thread.
bool buildChanged(const ports::ApplicationBundle& bundle, ports::KeyValueStore& defaults);

/// Sees to it at start that the daemon answers: a repair, a forced one when that did not help, and
/// `notifyHelperBroken` when neither did. Never leads to a password prompt. Main thread.
Task<> helperLaunchTask(Scheduler& scheduler, HelperManager& manager, Reinstall force,
                        UniqueFunction<void()> notifyHelperBroken);

}  // namespace vorli

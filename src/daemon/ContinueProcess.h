#pragma once

#include "contract/HelperProtocol.h"
#include "daemon/Permit.h"
#include "daemon/ProcessControl.h"

namespace vorli::daemon {

/// Resumes a stopped process, if all of its user ids are the caller's.
HelperReply continueProcess(ProcessControl& control, const Permit& permit, std::int32_t pid);

}  // namespace vorli::daemon

#pragma once

#include "daemon/Permit.h"
#include "daemon/ProcessControl.h"
#include "helper/HelperProtocol.h"

namespace vorli::daemon {

/// Lets a stopped process go on, if every user it runs as is the one who asks.
HelperReply continueProcess(ProcessControl& control, const Permit& permit, std::int32_t pid);

}  // namespace vorli::daemon

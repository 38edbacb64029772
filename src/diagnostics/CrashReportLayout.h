#pragma once

#include "base/HostSystem.h"
#include "ports/CrashCapture.h"
#include "ports/SystemDescription.h"

#include <optional>
#include <string>

namespace vorli {

/// Returns the texts of a crash report that surround the values known only at the crash. `hardwareModel` is
/// empty when the machine's model is unknown.
ports::CrashReportPieces crashReportPieces(const std::string& versionText,
                                           const ports::SystemVersion& systemVersion,
                                           const std::optional<std::string>& hardwareModel,
                                           HostSystem system = hostSystem);

}  // namespace vorli

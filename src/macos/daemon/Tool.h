#pragma once

#include "daemon/SystemError.h"

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

namespace vorli::machost {

struct ToolResult {
  std::int32_t exitStatus = 0;
  /// Everything that the tool wrote, to standard output and standard error.
  std::string output;
};

/// Runs one of the system's tools as root and waits for it, at most `seconds`; then it is asked to end. The
/// tool gets no input and none of the daemon's environment. Error: it could not be started, was ended by a
/// signal, or took too long. Any thread but the main one.
[[nodiscard]] std::expected<ToolResult, daemon::SystemError> runTool(
    const std::string& path, const std::vector<std::string>& arguments, double seconds);

}  // namespace vorli::machost

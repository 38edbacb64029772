#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorli::machost {

/// Runs a program in the C locale and waits for it, at most 10 seconds; then it is asked to end. Returns its
/// output. Empty when it could not be started or did not end by itself. Any thread.
std::optional<std::string> runTool(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace vorli::machost

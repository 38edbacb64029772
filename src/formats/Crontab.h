#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// Returns the commands that a user's crontab runs when the computer starts, in their order, as valid UTF-8.
/// Lines that are not understood are ignored.
std::vector<std::string> parseRebootCommands(std::string_view crontab);

/// Returns the first word of a command after everything that only prepares it: assignments, a change of the
/// folder, a pause. Empty when nothing else follows.
std::string programOfCommand(std::string_view command);

}  // namespace vorli::formats

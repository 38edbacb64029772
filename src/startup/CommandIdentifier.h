#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// Returns the identifier of a command that the user's crontab runs at the start: its program's name with an
/// ending. An entry of the same name is another item and is paused separately.
std::string commandIdentifier(std::string_view programName);

/// Returns "tea" for "tea@reboot", and any other identifier unchanged.
std::string_view withoutCommandEnding(std::string_view identifier);

}  // namespace vorli

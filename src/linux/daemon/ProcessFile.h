#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace vorli::linuxhost::process_file {

/// Real, effective, saved and file system user ids, from /proc/PID/status. Empty when they cannot be read.
std::optional<std::array<std::uint32_t, 4>> usersOf(std::int32_t pid);

/// The command name, at most 15 bytes, from /proc/PID/comm; empty when it cannot be read.
std::string commandOf(std::int32_t pid);

}  // namespace vorli::linuxhost::process_file

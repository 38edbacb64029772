#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Reads the first `limit` bytes of a file of the kernel or of the user. Empty when it cannot be read. Never
/// waits for a FIFO or a terminal.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit = 64 * 1024);

/// Target of a link; empty when the path is not a link or may not be read.
std::string readLink(const std::string& path);

}  // namespace vorli::linuxhost

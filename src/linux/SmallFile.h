#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// The first `limit` bytes of a file of the kernel's or of a person's. Empty when it cannot be read. Never
/// waits for a FIFO or a terminal.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit = 64 * 1024);

/// Where a link points to; empty when it is none or may not be read.
std::string readLink(const std::string& path);

}  // namespace vorli::linuxhost

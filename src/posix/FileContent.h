#pragma once

#include "posix/FileDescriptor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vorli::posix {

/// Opens a file with the flags; a new one is accessible to this user only. Refuses what is not a regular file
/// and waits for no peer, so that a pipe or a device cannot hold up the caller.
FileDescriptor openRegular(const std::string& path, int flags);

/// The content of a regular file. Empty when it cannot be read or is longer than `limitBytes`.
std::optional<std::string> readRegular(const std::string& path, std::size_t limitBytes);

/// The rest of a file from where it is read. Empty when it cannot be read or is longer than `limitBytes`. A
/// right `expectedBytes` spares a second read.
std::optional<std::string> contentOf(const FileDescriptor& file, std::size_t limitBytes,
                                     std::size_t expectedBytes = 0);

/// False when not everything could be written, for example to a full disk. Safe in a signal handler.
bool writeAll(int file, std::string_view bytes);

/// Removes the bytes that were appended last: on a full disk, half a line would run into the next one. Safe
/// in a signal handler.
void takeBack(int file, off_t bytes);

}  // namespace vorli::posix

#pragma once

#include "base/Date.h"
#include "posix/FileDescriptor.h"

#include <optional>
#include <string>
#include <sys/stat.h>

namespace vorli::posix {

/// After `failed`, `errno` says why. `unsupported`: the file system or the kernel has no such call.
enum class RenameResult { done, unsupported, failed };

/// Never replaces another file, or gives each of two files the other's name.
enum class RenameWay { withoutReplacing, swapping };

/// Calls on files that every system has under a name and with flags of its own.
struct FileSystemCalls {
  /// Creation time of the file; empty when it does not exist or its file system does not record that time.
  std::optional<Date> (*birthTime)(const std::string& path);

  /// Renames atomically.
  RenameResult (*rename)(const std::string& from, const std::string& to, RenameWay way);

  /// Gives `fresh` the group, mode, times, access control list and other attributes of `original`, whose
  /// status is `status`, and waits until they and the content are on the disk. False when one of them cannot
  /// be kept or the owner is another.
  bool (*describeAs)(const FileDescriptor& original, const struct stat& status, const FileDescriptor& fresh);

  /// Flag of `open` that keeps the access time as it is; 0 on a system without one.
  int keepsAccessTime;
};

}  // namespace vorli::posix

#pragma once

#include "base/Date.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ports {

enum class MoveResult { moved, sourceMissing, targetExists, failed };

/// The files of startup items. Paths are absolute. Any thread, one at a time; each call blocks for the disk
/// but never for a peer: pipes and devices do not count as files.
class StartupFiles {
 public:
  virtual ~StartupFiles() = default;

  /// Names of the entries of a folder, sorted by their bytes, without hidden ones. If the listing fails
  /// half-way, the names read so far. Empty optional when the folder does not exist or may not be listed.
  virtual std::optional<std::vector<std::string>> visibleNames(const std::string& folder) = 0;

  /// The whole content of a regular file; follows links. Empty when it does not exist, cannot be read, is not
  /// a regular file or is larger than `limitBytes`.
  virtual std::optional<std::string> read(const std::string& path, std::size_t limitBytes) = 0;

  /// True when the path exists; follows links, so a dangling link does not exist.
  virtual bool exists(const std::string& path) = 0;

  /// True when nothing is at the path; follows links. False when something exists there, and when the user
  /// may not look.
  virtual bool isMissing(const std::string& path) = 0;

  /// The file's creation time; never another of its times. Empty when it does not exist or its file system
  /// does not record that time.
  virtual std::optional<Date> birthTime(const std::string& path) = 0;

  /// Target of a symbolic link, exactly as stored in the link. Empty when the path is not a link.
  virtual std::optional<std::string> linkTarget(const std::string& path) = 0;

  /// Renames the file in the same file system, atomically, and never replaces another file.
  virtual MoveResult moveWithoutReplacing(const std::string& from, const std::string& to) = 0;

  /// Replaces the content of a regular file in one step if it still is `expected`; follows no link. The new
  /// file has the mode, group, times and attributes of the old one, and its creation time where the system
  /// allows it. False when the file has changed meanwhile or one of the others cannot be kept; the file is
  /// then unchanged.
  virtual bool rewrite(const std::string& path, const std::string& expected, const std::string& content) = 0;

  /// Like `rewrite`, but keeps the old file itself under the name `aside`, in the same folder. False also
  /// when that name is in use. A file system that cannot exchange two names loses the old file, as `rewrite`
  /// does.
  virtual bool setAside(const std::string& path, const std::string& expected, const std::string& content,
                        const std::string& aside) = 0;

  /// Replaces a regular file by the one at `aside` in one step if it still is `expected`; follows no link.
  /// False when it has changed meanwhile or `aside` does not exist; both are then unchanged.
  virtual bool putBack(const std::string& path, const std::string& expected, const std::string& aside) = 0;

  /// Creates a file in one step, and its folder where that does not exist. False when the path is in use or
  /// cannot be written.
  virtual bool create(const std::string& path, const std::string& content) = 0;

  /// Deletes one file. False when it still exists or did not exist.
  virtual bool remove(const std::string& path) = 0;
};

}  // namespace vorli::ports

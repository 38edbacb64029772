#pragma once

#include "daemon/SystemError.h"
#include "posix/FileDescriptor.h"

#include <expected>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace vorli::posix {

/// A plain file in a root folder, owned by root and held open without access to its content.
struct PinnedItem {
  FileDescriptor file;
  struct stat status;
};

template <typename T>
using Attempt = std::expected<T, daemon::SystemError>;

/// A folder that only root can change, held open: later changes of its path do not lead the work to another
/// folder. Follows no link. Calls block for microseconds, `flush` for longer.
class RootFolder {
 public:
  /// True when the folder lets others change it in spite of its mode.
  using HasGrants = bool (*)(const FileDescriptor& folder);
  /// Renames within the folder and returns 0, or -1 with `errno`.
  using Rename = int (*)(int folder, const char* from, const char* to);

  /// Error 1: somebody other than root can change the folder or one above it.
  [[nodiscard]] static Attempt<RootFolder> open(const std::string& path, HasGrants hasGrants);

  int descriptor() const { return folder_.get(); }

  /// True for a plain file that is owned by root and has a single name.
  static bool isPlainFileOfRoot(const struct stat& status);
  /// True when `name` refers to that file.
  bool bears(const std::string& name, const PinnedItem& item) const;
  /// Gives `item` the name `to` by `call`. If another file has taken its place in the meantime, that file
  /// gets its name back. Error 1: another file had taken its place.
  [[nodiscard]] Attempt<void> rename(const std::string& from, const std::string& to, const PinnedItem& item,
                                     Rename call) const;
  /// Waits until the names are on disk.
  [[nodiscard]] Attempt<void> flush() const;

 private:
  explicit RootFolder(FileDescriptor folder) : folder_(std::move(folder)) {}

  FileDescriptor folder_;
};

}  // namespace vorli::posix

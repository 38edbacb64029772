#pragma once

#include "daemon/ExitCode.h"
#include "linux/daemon/FileDescriptor.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace vorli::linuxhost {

/// A plain file of root's in a pinned folder, held open without access to its content.
struct PinnedItem {
  FileDescriptor file;
  struct stat status;
};

template <typename T>
using Attempt = std::expected<T, daemon::SystemError>;

/// One folder that only root can change, held open: whatever its path is made to lead to afterwards, work
/// goes on in the folder that was judged. Follows no link. Blocking calls of microseconds, `flush` of more.
class PinnedFolder {
 public:
  /// Error 1: somebody else may change the folder.
  static Attempt<PinnedFolder> open(const std::string& path);

  /// Error 1: not a plain file of root's with one name.
  Attempt<PinnedItem> pin(const std::string& name) const;
  bool contains(const std::string& name) const;
  /// True when `name` is that very file.
  bool bears(const std::string& name, const PinnedItem& item) const;

  /// Gives `item` a new name, never taking one that is in use. Should another file have slipped into its
  /// place meanwhile, that one gets its name back. Error 1: it had.
  Attempt<void> rename(const std::string& from, const std::string& to, const PinnedItem& item) const;
  /// Lets two files swap their names, if `name` is `item`; it bears `other` then. Error 1: it was not.
  Attempt<void> exchange(const std::string& other, const std::string& name, const PinnedItem& item) const;

  /// Makes a file with the content and with the item's mode, group and times.
  Attempt<void> write(const std::string& name, const std::string& content, const PinnedItem& item) const;
  void remove(const std::string& name) const;
  /// Removes what a run that was killed has left behind: plain files whose names begin with a dot and end so.
  void sweep(const std::string& ending) const;
  /// Waits until the names are on disk.
  Attempt<void> flush() const;

 private:
  explicit PinnedFolder(FileDescriptor folder) : folder_(std::move(folder)) {}

  Attempt<void> fill(const FileDescriptor& file, const std::string& content, const PinnedItem& item) const;

  FileDescriptor folder_;
};

/// The item's bytes. Error: among others, that it is too big to be a startup item.
Attempt<std::string> contentOf(const PinnedItem& item);

/// Seconds since 1970 at which the item was made; nothing when the file system does not keep it.
std::optional<std::int64_t> creationTimeOf(const PinnedItem& item);

}  // namespace vorli::linuxhost

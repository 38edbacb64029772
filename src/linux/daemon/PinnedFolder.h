#pragma once

#include "posix/daemon/RootFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace vorli::linuxhost {

using posix::Attempt;
using posix::PinnedItem;

/// The daemon's operations in a folder that only root can change. Follows no link. Calls block for
/// microseconds, `flush` for longer.
class PinnedFolder {
 public:
  /// Error 1: somebody other than root can change the folder.
  [[nodiscard]] static Attempt<PinnedFolder> open(const std::string& path);

  /// Error 1: not a plain file that is owned by root and has a single name.
  [[nodiscard]] Attempt<PinnedItem> pin(const std::string& name) const;
  bool contains(const std::string& name) const;
  /// True when `name` is a mask: an empty file, or a link to /dev/null, that keeps the service manager from
  /// loading any unit of that name.
  bool isMask(const std::string& name) const;

  /// Renames `item` to a name that is not in use. If another file has taken its place in the meantime, that
  /// file gets its name back. Error 1: another file had taken its place.
  [[nodiscard]] Attempt<void> rename(const std::string& from, const std::string& to,
                                     const PinnedItem& item) const;
  /// Swaps the names of two files if `name` refers to `item`, which is called `other` afterwards. Error 1:
  /// `name` refers to another file.
  [[nodiscard]] Attempt<void> exchange(const std::string& other, const std::string& name,
                                       const PinnedItem& item) const;

  /// Creates a file with the content, and with the item's mode, group, times, extended attributes and access
  /// control list. Error 1: one of them cannot be kept.
  [[nodiscard]] Attempt<void> write(const std::string& name, const std::string& content,
                                    const PinnedItem& item) const;
  void remove(const std::string& name) const;
  /// Name of the temporary file beside `item`, which is called `name`, while the two are exchanged.
  static std::string temporaryName(const std::string& name, const PinnedItem& item);
  /// Removes temporary files that a killed run left behind. A file that merely has such a name is kept: the
  /// inode in the name must be that of the file itself or of the item that it was made for.
  void sweep() const;
  /// Waits until the names are on disk.
  [[nodiscard]] Attempt<void> flush() const { return folder_.flush(); }

 private:
  explicit PinnedFolder(posix::RootFolder folder) : folder_(std::move(folder)) {}

  bool isOwnTemporary(const std::string& name) const;
  [[nodiscard]] Attempt<void> fill(const posix::FileDescriptor& file, const std::string& content,
                                   const PinnedItem& item) const;

  posix::RootFolder folder_;
};

/// The item's bytes. Fails when they cannot be read or are more than 1 MiB, which is too much for a startup
/// item.
[[nodiscard]] Attempt<std::string> contentOf(const PinnedItem& item);

/// Creation time of the item in seconds since 1970; empty when the file system does not record it.
std::optional<std::int64_t> creationTimeOf(const PinnedItem& item);

}  // namespace vorli::linuxhost

#pragma once

#include "posix/daemon/RootFolder.h"

#include <string>
#include <utility>

namespace vorli::machost {

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

  /// Renames `item` to a name that is not in use. If another file has taken its place in the meantime, that
  /// file gets its name back. Error 1: another file had taken its place.
  [[nodiscard]] Attempt<void> rename(const std::string& from, const std::string& to,
                                     const PinnedItem& item) const;
  /// Waits until the names are on disk.
  [[nodiscard]] Attempt<void> flush() const { return folder_.flush(); }

 private:
  explicit PinnedFolder(posix::RootFolder folder) : folder_(std::move(folder)) {}

  posix::RootFolder folder_;
};

}  // namespace vorli::machost

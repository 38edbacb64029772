#pragma once

#include "base/Task.h"
#include "startup/StartupItem.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Whether an item starts automatically.
enum class Enablement { paused, enabled };

/// One way to pause, resume and remove items. The path is always that of the item's file while it is enabled.
/// Only an unreachable helper is reported; the next scan shows what the file operations did. Main thread.
class StartupControl {
 public:
  /// `notApproved`: the user is being asked for the approval. `declined`: the user is not allowed to do it,
  /// or did not enter the password.
  enum class Outcome { done, notApproved, declined, notResponding };

  virtual ~StartupControl() = default;

  virtual Task<Outcome> setEnabled(Enablement to, std::string plistURL) = 0;
  /// Hides the item, so that `undoRemove` can restore it until `commitRemoval` deletes it.
  virtual Task<Outcome> remove(std::string plistURL) = 0;
  virtual Task<Outcome> undoRemove(std::string plistURL) = 0;
  virtual Task<> commitRemoval(std::string plistURL) = 0;
  /// Stops the item now if it is a service of the user. Whether it starts automatically does not change.
  virtual Task<> quit(std::string plistURL);
};

/// Chooses the control for an item.
class StartupControls {
 public:
  /// A control for every file below a folder, whose path ends in a slash.
  struct Folder {
    std::string path;
    StartupControl& control;
  };

  /// The two folders of the system's launch jobs.
  static const std::span<const std::string_view> macOSHelperFolders;

  /// `ofUser` handles files that the program may move itself, `ofHelper` the others; items below one of
  /// `folders` belong to that folder's control. `helperFolders` end in slashes.
  StartupControls(StartupControl& ofUser, StartupControl& ofHelper,
                  std::span<const std::string_view> helperFolders, std::vector<Folder> folders = {});

  /// `item` must have a file.
  StartupControl& forItem(const StartupItem& item) const;
  /// Chooses by the path alone, because the item is not in the list any more.
  StartupControl& forRemoved(std::string_view plistURL) const;

 private:
  StartupControl* ofFolder(std::string_view plistURL) const;

  StartupControl& ofUser_;
  StartupControl& ofHelper_;
  const std::span<const std::string_view> helperFolders_;
  const std::vector<Folder> folders_;
};

}  // namespace vorli

#pragma once

#include "formats/UnitFile.h"
#include "ports/StartupFiles.h"
#include "ports/StartupPlaces.h"
#include "startup/FolderListing.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

using ports::UnitFolder;

/// A unit as a service manager would load it.
struct FoundUnit {
  std::string name;
  const UnitFolder* folder = nullptr;  // folder of its file
  std::string text;
  bool isEnabled = true;          // false when it is masked or paused
  bool overridesAnother = false;  // without its file, something else of its name would count
  bool isLink = false;            // its file is kept elsewhere
  bool isInstance = false;        // made from a template, so it has no file of its own
  bool hasEarlierFile = false;    // another file was put away under this name and is still there
};

/// Looks for units in the folders of one service manager, the most important first. Lists each folder once,
/// because most units are in only one of many folders.
class UnitSearch {
 public:
  /// `initScripts` is the folder of the scripts from which the manager creates services; empty if it creates
  /// none.
  UnitSearch(ports::StartupFiles& files, std::vector<UnitFolder> folders, std::string initScripts = {});

  const std::vector<UnitFolder>& folders() const { return folders_; }

  /// Returns the names of the units that the user's or the administrator's links start, and of those that
  /// this program paused. Lists the folders again.
  std::set<std::string> startedNames();

  /// Returns the unit with this name or this alias. Empty when there is none.
  std::optional<FoundUnit> find(const std::string& name);

  /// True when `folder` has a file of this name that keeps the unit from being loaded.
  bool isMask(const UnitFolder& folder, const std::string& name);

 private:
  /// The most important folder that has a name, and where the name leads if it is a link.
  struct Holder {
    const UnitFolder* folder = nullptr;
    std::optional<std::string> target;
  };

  Holder holderOf(const std::string& name);
  std::optional<FoundUnit> findFile(const std::string& name, const Holder& holder);
  bool hasOtherOrigin(const std::string& name, const UnitFolder& folder);
  FolderListing& listing(const UnitFolder& folder);
  void listAgain();

  ports::StartupFiles& files_;
  const std::vector<UnitFolder> folders_;
  FolderListing initScripts_;            // has no path if the manager creates no services
  std::vector<FolderListing> listings_;  // of `folders_`
};

}  // namespace vorli

#pragma once

#include <string>
#include <vector>

namespace vorli::ports {

// Folders in which a host keeps its startup items. Paths are absolute, without a slash at the end. Folders
// that override others come before them.

/// Folders of the entries that a session starts at login.
struct AutostartFolders {
  std::string user;  // overrides the others, file by file
  std::vector<std::string> systems;
};

/// A folder in which a service manager looks for units.
struct UnitFolder {
  enum class Owner {
    user,           // this user alone
    administrator,  // below /etc, for all users
    package,        // belongs to a package or to the manager itself: never changed
    runtime,        // created while the system runs, and gone at its next start
  };

  std::string path;
  Owner owner = Owner::package;
};

/// All places, with the values that decide which of their items count for this user. Without sessions that
/// start entries and without a service manager, the lists are empty.
struct StartupPlaces {
  std::string home;
  AutostartFolders autostart;
  std::vector<std::string> desktops;        // names of the running desktop
  std::vector<std::string> locales;         // keys of the user's language, the most exact first
  std::vector<std::string> programFolders;  // folders to search for a program without a slash
  std::vector<UnitFolder> userUnits;        // the first is the user's own
  std::vector<UnitFolder> systemUnits;
  std::string initScripts;  // the system's manager creates services for scripts here that have no unit
};

}  // namespace vorli::ports

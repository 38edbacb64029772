#pragma once

#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The folders of a user's desktop entries, and how to read them.
struct DesktopEntryPlaces {
  /// Folders of entries, the most important first: an id found in an earlier one hides the same id in a later
  /// one.
  std::vector<std::string> folders;
  std::vector<std::string> programPath;  // folders to search for a program without a slash
  std::vector<std::string> locales;
  /// Names of the desktop that runs; empty when it is unknown, and then every entry is accepted.
  std::vector<std::string> desktops = {};

  /// Folders: the user's own, the flatpak exports, those of XDG_DATA_DIRS, and snap's. Programs: PATH.
  /// Locales: the languages of LANGUAGE, or the first of LC_ALL, LC_MESSAGES and LANG that is set. Desktops:
  /// XDG_CURRENT_DESKTOP.
  static DesktopEntryPlaces ofThisUser();
};

}  // namespace vorli::linuxhost

#include "linux/applications/DesktopEntryPlaces.h"

#include "formats/DesktopEntry.h"
#include "posix/Environment.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace vorli::linuxhost {
namespace {

// Sessions often set folders with a slash at the end. Paths are compared as text, so it is removed.
std::string withoutSlashes(std::string folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

std::vector<std::string> splitFolders(const char* name, std::string_view otherwise) {
  const auto set = posix::environmentVariable(name);
  std::vector<std::string> folders;
  for (const auto& part : posix::splitList(set.empty() ? otherwise : set)) {
    if (part.starts_with('/')) folders.push_back(withoutSlashes(part));
  }
  return folders;
}

void addUnlessThere(std::vector<std::string>& list, std::string item) {
  if (std::ranges::find(list, item) == list.end()) list.push_back(std::move(item));
}

// LANGUAGE may name several languages, but not in a session without any.
std::vector<std::string> localesOfThisUser() {
  std::vector<std::string> own;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto locale = posix::environmentVariable(name); !locale.empty()) {
      own = formats::localeKeys(locale);
      break;
    }
  }
  const auto languages = posix::splitList(posix::environmentVariable("LANGUAGE"));
  if (own.empty() || languages.empty()) return own;
  std::vector<std::string> keys;
  for (const auto& language : languages) {
    for (auto& key : formats::localeKeys(language)) addUnlessThere(keys, std::move(key));
  }
  return keys;
}

}  // namespace

DesktopEntryPlaces DesktopEntryPlaces::ofThisUser() {
  auto own = posix::environmentVariable("XDG_DATA_HOME");
  own = own.starts_with('/') ? withoutSlashes(own) : posix::environmentVariable("HOME") + "/.local/share";

  DesktopEntryPlaces places;
  places.folders = {own + "/applications", own + "/flatpak/exports/share/applications"};
  for (const auto& folder : splitFolders("XDG_DATA_DIRS", "/usr/local/share:/usr/share")) {
    addUnlessThere(places.folders, folder + "/applications");
  }
  for (const char* folder :
       {"/var/lib/flatpak/exports/share/applications", "/var/lib/snapd/desktop/applications"}) {
    addUnlessThere(places.folders, folder);
  }
  places.programPath = splitFolders("PATH", "/usr/local/bin:/usr/bin:/bin");
  places.locales = localesOfThisUser();
  places.desktops = posix::splitList(posix::environmentVariable("XDG_CURRENT_DESKTOP"));
  return places;
}

}  // namespace vorli::linuxhost

#include "helper/ApplicationsFolder.h"

#include <algorithm>
#include <string>

namespace vorli {

namespace {

constexpr std::string_view macOSFolders[] = {"/Applications/"};
constexpr std::string_view macOSHomeFolders[] = {"/Applications/"};

// Package managers install into /usr or /opt. The rest are the roots of flatpak and snap; /app is where a
// flatpak sees itself.
constexpr std::string_view linuxFolders[] = {
    "/usr/", "/opt/", "/app/", "/var/lib/flatpak/", "/snap/", "/var/lib/snapd/snap/"};
constexpr std::string_view linuxHomeFolders[] = {"/.local/", "/Applications/"};

}  // namespace

constexpr ApplicationsFolders ApplicationsFolders::macOS{macOSFolders, macOSHomeFolders};
constexpr ApplicationsFolders ApplicationsFolders::linuxDesktop{linuxFolders, linuxHomeFolders};

bool isAppInApplicationsFolder(const ports::ApplicationBundle& bundle, const ApplicationsFolders& folders) {
  const std::string path = bundle.bundlePath();
  const std::string home = bundle.homeDirectory();
  return std::ranges::any_of(folders.everybodys, [&](auto folder) { return path.starts_with(folder); }) ||
         std::ranges::any_of(folders.inHome,
                             [&](auto folder) { return path.starts_with(home + std::string(folder)); });
}

}  // namespace vorli

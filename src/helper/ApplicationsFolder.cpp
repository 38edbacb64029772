#include "helper/ApplicationsFolder.h"

#include "base/HostSystem.h"

#include <algorithm>
#include <array>
#include <string>

namespace vorli {

namespace {

using namespace std::string_view_literals;

constexpr std::array macOSFolders{"/Applications/"sv};
constexpr std::array macOSHomeFolders{"/Applications/"sv};

// What a package manager installs lies in /usr or /opt; the rest are the roots of flatpak and snap, and
// /app is a flatpak's own view of itself.
constexpr std::array linuxFolders{
    "/usr/"sv, "/opt/"sv, "/app/"sv, "/var/lib/flatpak/"sv, "/snap/"sv, "/var/lib/snapd/snap/"sv};
constexpr std::array linuxHomeFolders{"/.local/"sv, "/Applications/"sv};

}  // namespace

constexpr ApplicationsFolders ApplicationsFolders::macOS{macOSFolders, macOSHomeFolders};
constexpr ApplicationsFolders ApplicationsFolders::linuxDesktop{linuxFolders, linuxHomeFolders};

const ApplicationsFolders& ApplicationsFolders::ofThisSystem() {
  return hostSystem == HostSystem::macOS ? macOS : linuxDesktop;
}

bool isAppInApplicationsFolder(const ports::ApplicationBundle& bundle, const ApplicationsFolders& folders) {
  const std::string path = bundle.bundlePath();
  const std::string home = bundle.homeDirectory();
  return std::ranges::any_of(folders.everybodys, [&](auto folder) { return path.starts_with(folder); }) ||
         std::ranges::any_of(folders.inHome,
                             [&](auto folder) { return path.starts_with(home + std::string(folder)); });
}

}  // namespace vorli

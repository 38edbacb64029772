#include "linux/startup/StartupPlaces.h"

#include "linux/applications/DesktopEntryIndex.h"
#include "linux/session/LoginItem.h"
#include "linux/session/UserFolders.h"

#include <filesystem>
#include <utility>

namespace vorli::linuxhost {

namespace {

using Owner = ports::UnitFolder::Owner;

// Adds the folder unless it is the same as `same`: on most systems /lib is a link into /usr.
void addUnlessLinked(std::vector<ports::UnitFolder>& folders, const std::string& path,
                     const std::string& same) {
  std::error_code failed;
  if (!std::filesystem::equivalent(path, same, failed)) folders.push_back({path, Owner::package});
}

}  // namespace

ports::StartupPlaces startupPlacesOfThisUser(const std::string& home) {
  const auto autostart = AutostartPlaces::ofThisSession(home);
  const auto applications = DesktopEntryIndex::Places::ofThisUser();
  ports::StartupPlaces places;
  places.home = home;
  places.autostart.user = autostart.user.string();
  for (const auto& folder : autostart.systems) places.autostart.systems.push_back(folder.string());
  places.desktops = autostart.desktops;
  places.locales = applications.locales;
  places.programFolders = applications.programPath;
  places.userUnits = {{configFolder(home) + "/systemd/user", Owner::user},
                      {"/etc/systemd/user", Owner::administrator},
                      {"/run/systemd/user", Owner::runtime},
                      {dataFolder(home) + "/systemd/user", Owner::user},
                      {"/usr/local/share/systemd/user", Owner::package},
                      {"/usr/share/systemd/user", Owner::package},
                      {"/usr/local/lib/systemd/user", Owner::package},
                      {"/usr/lib/systemd/user", Owner::package}};
  places.systemUnits = {
      {"/etc/systemd/system.control", Owner::package}, {"/run/systemd/system.control", Owner::runtime},
      {"/run/systemd/transient", Owner::runtime},      {"/run/systemd/generator.early", Owner::runtime},
      {"/etc/systemd/system", Owner::administrator},   {"/etc/systemd/system.attached", Owner::package},
      {"/run/systemd/system", Owner::runtime},         {"/run/systemd/system.attached", Owner::runtime},
      {"/run/systemd/generator", Owner::runtime},      {"/usr/local/lib/systemd/system", Owner::package},
      {"/usr/lib/systemd/system", Owner::package},     {"/run/systemd/generator.late", Owner::runtime}};
  places.initScripts = "/etc/init.d";
  addUnlessLinked(places.userUnits, "/etc/xdg/systemd/user", "/etc/systemd/user");
  addUnlessLinked(places.userUnits, "/lib/systemd/user", "/usr/lib/systemd/user");
  addUnlessLinked(places.systemUnits, "/lib/systemd/system", "/usr/lib/systemd/system");
  return places;
}

}  // namespace vorli::linuxhost

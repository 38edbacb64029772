#include "bench/StartupMachine.h"

#include "base/Date.h"

namespace vorli::bench {

namespace {

ports::StartupPlaces placesBelow(const std::string& root) {
  using enum ports::UnitFolder::Owner;
  ports::StartupPlaces places;
  places.home = root + "/home";
  places.autostart = {root + "/home/.config/autostart", {root + "/etc/xdg/autostart"}};
  places.desktops = {"XFCE"};
  places.locales = {"de_DE", "de"};
  places.programFolders = {"/usr/local/bin", "/usr/bin", "/bin"};
  places.userUnits = {
      {root + "/home/.config/systemd/user", user},      {root + "/etc/systemd/user", administrator},
      {root + "/home/.local/share/systemd/user", user}, {root + "/usr/local/share/systemd/user", package},
      {root + "/usr/share/systemd/user", package},      {root + "/usr/local/lib/systemd/user", package},
      {root + "/usr/lib/systemd/user", package}};
  places.systemUnits = {{root + "/etc/systemd/system", administrator},
                        {root + "/usr/local/lib/systemd/system", package},
                        {root + "/usr/lib/systemd/system", package}};
  return places;
}

}  // namespace

StartupMachine::StartupMachine(const std::string& root)
    : places_(placesBelow(root)),
      applications_({{root + "/usr/share/applications"}, places_.programFolders, places_.locales}),
      entries_(files_, applications_, places_),
      userUnits_(files_, places_.userUnits, UnitManager::user, places_.home),
      systemUnits_(files_, places_.systemUnits, UnitManager::system, places_.home),
      listed_(lists_, files_, places_.home),
      scan_({files_, applications_, processes_, textOrder_},
            {&entries_, &userUnits_, &systemUnits_, &listed_}) {}

std::vector<std::string> StartupMachine::folders() const {
  std::vector<std::string> folders{places_.autostart.user};
  folders.insert(folders.end(), places_.autostart.systems.begin(), places_.autostart.systems.end());
  for (const auto& folder : places_.userUnits) folders.push_back(folder.path);
  for (const auto& folder : places_.systemUnits) folders.push_back(folder.path);
  return folders;
}

StartupMachine::Count StartupMachine::scan() {
  const auto gathered = scan_.gather();
  const auto items = scan_.classify(gathered, {}, Date::distantPast());
  return {items.size(), static_cast<std::size_t>(gathered.hidden)};
}

}  // namespace vorli::bench

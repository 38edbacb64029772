#include "startup/StartupWays.h"

#include "startup/AutostartControls.h"
#include "startup/AutostartEntries.h"
#include "startup/BackgroundItems.h"
#include "startup/LaunchDirectories.h"
#include "startup/ListedItems.h"
#include "startup/PlistControls.h"
#include "startup/StartupUnits.h"
#include "startup/UnitControls.h"

#include <string>
#include <utility>

namespace vorli {

namespace {

using Owner = ports::UnitFolder::Owner;

class MacOSWays final : public StartupWays {
 public:
  explicit MacOSWays(const StartupWayNeeds& needs)
      : launchDirectories_(needs.files, needs.places.home),
        backgroundItems_(needs.files, needs.applications, needs.lists, needs.places.home),
        ofUser_(needs.files, needs.launchControl, needs.worker),
        ofHelper_(needs.files, needs.helperManager, needs.worker),
        controls_(ofUser_, ofHelper_, StartupControls::macOSHelperFolders) {}

  std::vector<StartupSource*> sources() override { return {&launchDirectories_, &backgroundItems_}; }
  const StartupControls& controls() const override { return controls_; }

 private:
  LaunchDirectories launchDirectories_;
  BackgroundItems backgroundItems_;
  UserPlistControl ofUser_;
  HelperPlistControl ofHelper_;
  const StartupControls controls_;
};

std::string administratorsFolder(const std::vector<ports::UnitFolder>& folders) {
  for (const auto& folder : folders)
    if (folder.owner == Owner::administrator) return folder.path + "/";
  return {};
}

class LinuxWays final : public StartupWays {
 public:
  explicit LinuxWays(const StartupWayNeeds& needs)
      : entries_(needs.files, needs.applications, needs.places),
        userUnits_(needs.files, needs.places.userUnits, StartupUnits::Manager::user, needs.places.home),
        systemUnits_(needs.files, needs.places.systemUnits, StartupUnits::Manager::system, needs.places.home,
                     needs.places.initScripts),
        listed_(needs.lists, needs.files, needs.places.home),
        ofHelper_(needs.files, needs.helperManager, needs.worker),
        ofUserEntries_(needs.files, needs.launchControl, needs.worker, needs.places.autostart),
        ofSystemEntries_(needs.files, needs.launchControl, needs.worker, needs.places.autostart),
        ofUserUnits_(needs.files, needs.launchControl, needs.worker, ofHelper_, needs.places.userUnits),
        ofSystemUnits_(needs.scheduler, needs.files, needs.systemUnits, needs.worker, ofHelper_,
                       administratorsFolder(needs.places.systemUnits)),
        controls_(ofUserUnits_, ofHelper_, {}, folders(needs.places)) {}

  std::vector<StartupSource*> sources() override { return {&entries_, &userUnits_, &systemUnits_, &listed_}; }
  const StartupControls& controls() const override { return controls_; }

 private:
  std::vector<StartupControls::Folder> folders(const ports::StartupPlaces& places) {
    std::vector<StartupControls::Folder> folders{{places.autostart.user + "/", ofUserEntries_}};
    for (const auto& folder : places.autostart.systems) folders.push_back({folder + "/", ofSystemEntries_});
    for (const auto& folder : places.userUnits) folders.push_back({folder.path + "/", ofUserUnits_});
    for (const auto& folder : places.systemUnits) folders.push_back({folder.path + "/", ofSystemUnits_});
    return folders;
  }

  AutostartEntries entries_;
  StartupUnits userUnits_;
  StartupUnits systemUnits_;
  ListedItems listed_;
  HelperPlistControl ofHelper_;
  UserAutostartControl ofUserEntries_;
  SystemAutostartControl ofSystemEntries_;
  UserUnitControl ofUserUnits_;
  SystemUnitControl ofSystemUnits_;
  const StartupControls controls_;
};

}  // namespace

std::unique_ptr<StartupWays> startupWaysOf(HostSystem system, const StartupWayNeeds& needs) {
  if (system == HostSystem::macOS) return std::make_unique<MacOSWays>(needs);
  return std::make_unique<LinuxWays>(needs);
}

}  // namespace vorli

#include "startup/StartupControl.h"

#include <algorithm>
#include <utility>

namespace vorli {

namespace {

constexpr std::string_view launchFolders[] = {"/Library/LaunchAgents/", "/Library/LaunchDaemons/"};

}  // namespace

constinit const std::span<const std::string_view> StartupControls::macOSHelperFolders{launchFolders};

Task<> StartupControl::quit(std::string) {
  co_return;
}

StartupControls::StartupControls(StartupControl& ofUser, StartupControl& ofHelper,
                                 std::span<const std::string_view> helperFolders, std::vector<Folder> folders)
    : ofUser_(ofUser), ofHelper_(ofHelper), helperFolders_(helperFolders), folders_(std::move(folders)) {}

StartupControl& StartupControls::forItem(const StartupItem& item) const {
  if (auto* control = ofFolder(*item.plistURL)) return *control;
  return item.isUserWritable ? ofUser_ : ofHelper_;
}

StartupControl& StartupControls::forRemoved(std::string_view plistURL) const {
  if (auto* control = ofFolder(plistURL)) return *control;
  const bool isHelpers =
      std::ranges::any_of(helperFolders_, [&](auto folder) { return plistURL.starts_with(folder); });
  return isHelpers ? ofHelper_ : ofUser_;
}

StartupControl* StartupControls::ofFolder(std::string_view plistURL) const {
  for (const auto& folder : folders_) {
    if (plistURL.starts_with(folder.path)) return &folder.control;
  }
  return nullptr;
}

}  // namespace vorli

#include "linux/startup/ApplicationIcons.h"

#include "contract/SystemStartupFolders.h"
#include "formats/AutostartEntry.h"
#include "formats/DesktopEntry.h"
#include "linux/applications/DesktopEntryPlaces.h"
#include "posix/Environment.h"
#include "posix/FileContent.h"
#include "posix/Folders.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vorli::linuxhost {
namespace {

constexpr std::size_t largestText = std::size_t{1024} * 1024;
constexpr std::size_t largestImage = std::size_t{4} * 1024 * 1024;
constexpr std::size_t mostThemes = 16;
constexpr std::string_view imageSuffix = ".png";
constexpr std::string_view themeOfApplications = "hicolor";

// Some entries name their icon with the suffix of a file.
std::string withoutSuffix(std::string name) {
  for (const std::string_view suffix : {".png", ".svg", ".xpm"}) {
    if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
  }
  return name;
}

void addOnce(std::vector<std::string>& list, std::string item) {
  if (std::ranges::find(list, item) == list.end()) list.push_back(std::move(item));
}

}  // namespace

ApplicationIcons::Places ApplicationIcons::Places::ofThisUser() {
  constexpr std::string_view entries = "/applications";
  Places places;
  if (const auto home = posix::environmentVariable("HOME"); !home.empty())
    places.themes.push_back(std::string(home) + "/.icons");
  for (auto folder : DesktopEntryPlaces::ofThisUser().folders) {
    if (!folder.ends_with(entries)) continue;
    folder.resize(folder.size() - entries.size());
    addOnce(places.themes, folder + "/icons");
    addOnce(places.loose, folder + "/pixmaps");
  }
  return places;
}

ApplicationIcons::ApplicationIcons(Places places, std::function<std::string()> themeName)
    : places_(std::move(places)), themeName_(std::move(themeName)), wanted_(std::string()) {}

void ApplicationIcons::lookAgain() {
  auto name = themeName_();
  const std::lock_guard guard(nameLock_);
  wanted_ = std::move(name);
}

void ApplicationIcons::readThemes() {
  std::optional<std::string> name;
  {
    const std::lock_guard guard(nameLock_);
    name = std::exchange(wanted_, std::nullopt);
  }
  if (!name) return;
  themes_.clear();
  std::vector<std::string> seen{std::string(themeOfApplications)};  // always searched last
  if (!name->empty() && name->find('/') == name->npos) readTheme(*name, seen);
  seen.clear();
  readTheme(std::string(themeOfApplications), seen);
}

void ApplicationIcons::readTheme(const std::string& name, std::vector<std::string>& seen) {
  if (seen.size() == mostThemes || std::ranges::find(seen, name) != seen.end()) return;
  seen.push_back(name);
  std::optional<std::string> index;
  for (const auto& place : places_.themes) {
    index = posix::readRegular(place + "/" + name + "/index.theme", largestText);
    if (index) break;
  }
  if (!index) return;
  auto read = formats::parseIconTheme(*index);
  Theme theme;
  for (auto& sizes : read.folders) {
    Folder folder;
    for (const auto& place : places_.themes) {
      auto path = place + "/" + name + "/" + sizes.path;
      if (posix::isFolder(path)) folder.paths.push_back(std::move(path));
    }
    folder.sizes = std::move(sizes);
    if (!folder.paths.empty()) theme.push_back(std::move(folder));
  }
  themes_.push_back(std::move(theme));
  for (const auto& next : read.inherits) readTheme(next, seen);
}

std::optional<std::string> ApplicationIcons::image(const std::string& application, int sidePixels) {
  auto text = posix::readRegular(application, largestText);
  // A paused entry has another name and is switched off.
  if (!text) text = posix::readRegular(application + std::string(helper::disabledExtension), largestText);
  if (!text) return std::nullopt;
  const auto entry = formats::parseDesktopEntry(formats::switchedOn(*text), {});
  if (!entry || entry->icon.empty()) return std::nullopt;
  if (entry->icon.starts_with('/'))
    return entry->icon.ends_with(imageSuffix) ? posix::readRegular(entry->icon, largestImage) : std::nullopt;
  const auto name = withoutSuffix(entry->icon);
  if (name.empty() || name.find('/') != name.npos) return std::nullopt;
  const std::lock_guard guard(lock_);
  readThemes();
  return imageNamed(name, sidePixels);
}

// A theme that has the icon in any size comes before the themes that it inherits from.
std::optional<std::string> ApplicationIcons::imageNamed(const std::string& name, int sidePixels) {
  const auto file = "/" + name + std::string(imageSuffix);
  for (auto& theme : themes_) {
    std::ranges::stable_sort(
        theme, {}, [sidePixels](const Folder& folder) { return formats::misfit(folder.sizes, sidePixels); });
    for (const auto& folder : theme) {
      for (const auto& path : folder.paths) {
        if (auto bytes = posix::readRegular(path + file, largestImage)) return bytes;
      }
    }
  }
  for (const auto& folder : places_.loose) {
    if (auto bytes = posix::readRegular(folder + file, largestImage)) return bytes;
  }
  return std::nullopt;
}

}  // namespace vorli::linuxhost

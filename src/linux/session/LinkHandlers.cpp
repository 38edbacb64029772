#include "linux/session/LinkHandlers.h"

#include "formats/DesktopEntry.h"
#include "formats/DesktopGroup.h"
#include "formats/DesktopLine.h"
#include "linux/kernel/SmallFile.h"
#include "posix/Environment.h"

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t largestList = 4 * 1024 * 1024;

// The user's folder, then the system's; relative paths are ignored.
std::vector<std::string> folders(const std::string& own, const std::string& list) {
  std::vector<std::string> all{own};
  for (auto& folder : posix::splitList(list, ':')) {
    if (folder.starts_with('/')) all.push_back(std::move(folder));
  }
  return all;
}

std::string orElse(const std::string& value, const std::string& standard) {
  return value.empty() ? standard : value;
}

// Files that an identifier can stand for: each of its dashes, from the left, may separate a folder.
std::vector<std::string> filesOf(std::string desktopID) {
  std::vector<std::string> files{desktopID};
  for (auto dash = desktopID.find('-'); dash != desktopID.npos; dash = desktopID.find('-', dash)) {
    desktopID[dash] = '/';
    files.push_back(desktopID);
  }
  return files;
}

std::optional<std::string> readEntryIn(const std::string& folder, const std::string& desktopID) {
  for (const auto& file : filesOf(desktopID))
    if (auto text = readSmallFile(folder + "/applications/" + file, largestList)) return text;
  return std::nullopt;
}

}  // namespace

LinkHandlers::Places LinkHandlers::Places::ofThisUser(const std::string& homeDirectory) {
  const auto absolute = [](const std::string& value) { return value.starts_with('/') ? value : ""; };
  Places places;
  places.configFolders =
      folders(orElse(absolute(posix::environmentVariable("XDG_CONFIG_HOME")), homeDirectory + "/.config"),
              orElse(posix::environmentVariable("XDG_CONFIG_DIRS"), "/etc/xdg"));
  places.dataFolders =
      folders(orElse(absolute(posix::environmentVariable("XDG_DATA_HOME")), homeDirectory + "/.local/share"),
              orElse(posix::environmentVariable("XDG_DATA_DIRS"), "/usr/local/share:/usr/share"));
  places.desktops = posix::splitList(
      QString::fromStdString(posix::environmentVariable("XDG_CURRENT_DESKTOP")).toLower().toStdString(), ':');
  return places;
}

LinkHandlers::LinkHandlers(Places places) : places_(std::move(places)) {}

// Programs that the user chose, from all folders, then those that only declare that they support the type. A
// list takes programs away from the less important ones.
std::vector<std::string> LinkHandlers::candidates(std::string_view type) const {
  std::vector<std::string> chosen, able, removed;
  auto lists = places_.configFolders;
  for (const auto& folder : places_.dataFolders) lists.push_back(folder + "/applications");
  const auto read = [type](const std::string& file, std::string_view header, std::vector<std::string>& ids) {
    const auto text = readSmallFile(file, largestList);
    const auto value = text ? formats::valueInGroup(*text, header, type) : std::nullopt;
    for (auto& id : formats::desktopList(value.value_or(""))) ids.push_back(std::move(id));
  };
  const auto readAble = [&](const std::string& file, std::string_view header) {
    std::vector<std::string> ids;
    read(file, header, ids);
    std::ranges::copy_if(ids, std::back_inserter(able), [&removed](const std::string& id) {
      return std::ranges::find(removed, id) == removed.end();
    });
  };
  for (const auto& folder : lists) {
    for (const auto& desktop : places_.desktops) {
      read(folder + "/" + desktop + "-mimeapps.list", "[Default Applications]", chosen);
    }
    read(folder + "/mimeapps.list", "[Default Applications]", chosen);
    readAble(folder + "/mimeapps.list", "[Added Associations]");
    read(folder + "/mimeapps.list", "[Removed Associations]", removed);
    readAble(folder + "/mimeinfo.cache", "[MIME Cache]");
  }
  chosen.insert(chosen.end(), able.begin(), able.end());
  return chosen;
}

std::optional<std::vector<std::string>> LinkHandlers::commandOf(const std::string& desktopID,
                                                                const std::string& target) const {
  if (desktopID.find('/') != std::string::npos) return std::nullopt;
  for (const auto& folder : places_.dataFolders) {
    const auto text = readEntryIn(folder, desktopID);
    if (!text) continue;
    const auto value = [&text](std::string_view key) {
      return formats::desktopText(formats::valueInGroup(*text, formats::desktopEntryGroup, key).value_or(""));
    };
    bool hasTarget = false;
    auto words = formats::splitExec(value("Exec"), [&](char code, std::vector<std::string>& added) {
      if (code == 'c') added.push_back(value("Name"));
      if (std::string_view("uUfF").find(code) == std::string_view::npos) return;
      added.push_back(target);
      hasTarget = true;
    });
    const bool isUsable = value("Hidden") != "true" && value("Terminal") != "true" && !words.empty();
    if (!isUsable) return std::nullopt;
    if (QStandardPaths::findExecutable(QString::fromStdString(words.front())).isEmpty()) return std::nullopt;
    if (!hasTarget) words.push_back(target);
    return words;
  }
  return std::nullopt;
}

std::optional<std::vector<std::string>> LinkHandlers::commandFor(std::string_view type,
                                                                 const std::string& target) const {
  for (const auto& id : candidates(type)) {
    if (auto command = commandOf(id, target)) return command;
  }
  return std::nullopt;
}

bool LinkHandlers::open(std::string_view type, const std::string& target) const {
  const auto command = commandFor(type, target);
  if (!command) return false;
  QStringList arguments;
  for (std::size_t i = 1; i < command->size(); ++i) arguments << QString::fromStdString(command->at(i));
  return QProcess::startDetached(QString::fromStdString(command->front()), arguments);
}

}  // namespace vorli::linuxhost

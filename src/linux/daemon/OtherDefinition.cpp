#include "linux/daemon/OtherDefinition.h"

#include <array>
#include <dirent.h>
#include <memory>
#include <span>
#include <sys/stat.h>

namespace vorli::linuxhost {

namespace {

constexpr std::string_view systemUnits = "/etc/systemd/system";
constexpr std::string_view initScripts = "/etc/init.d";
constexpr std::string_view configuration = "/etc/xdg";

constexpr std::array<std::string_view, 12> systemUnitFolders{
    "/etc/systemd/system.control",  "/run/systemd/system.control",  "/run/systemd/transient",
    "/run/systemd/generator.early", "/etc/systemd/system.attached", "/run/systemd/system",
    "/run/systemd/system.attached", "/run/systemd/generator",       "/usr/local/lib/systemd/system",
    "/usr/lib/systemd/system",      "/lib/systemd/system",          "/run/systemd/generator.late"};
constexpr std::array<std::string_view, 7> userUnitFolders{
    "/etc/xdg/systemd/user",   "/run/systemd/user",           "/usr/local/share/systemd/user",
    "/usr/share/systemd/user", "/usr/local/lib/systemd/user", "/usr/lib/systemd/user",
    "/lib/systemd/user"};
constexpr std::array<std::string_view, 5> autostartFolders{
    "/usr/local/etc/xdg/autostart", "/usr/local/share/gnome/autostart", "/usr/share/gnome/autostart",
    "/usr/local/share/autostart", "/usr/share/autostart"};

std::string pathOf(std::string_view folder, std::string_view name) {
  return std::string(folder) + "/" + std::string(name);
}

std::optional<std::string> existing(std::string path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
  return path;
}

bool isSameFolder(std::string_view a, std::string_view b) {
  struct stat one {
  }, other{};
  return ::stat(std::string(a).c_str(), &one) == 0 && ::stat(std::string(b).c_str(), &other) == 0 &&
         one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Some of the folders are links to the item's own folder.
std::optional<std::string> firstWith(std::span<const std::string_view> folders, std::string_view own,
                                     std::string_view name) {
  for (const auto folder : folders)
    if (auto found = existing(pathOf(folder, name)); found && !isSameFolder(folder, own)) return found;
  return std::nullopt;
}

// "getty@tty1.service" is made from "getty@.service"; empty when the name is not an instance.
std::string templateOf(std::string_view name) {
  const auto at = name.find('@');
  const auto dot = name.rfind('.');
  if (at == std::string_view::npos || dot == std::string_view::npos || dot <= at + 1) return "";
  return std::string(name.substr(0, at + 1)) + std::string(name.substr(dot));
}

std::optional<std::string> otherUnit(const helper::SystemStartupFolder& folder, std::string_view name) {
  const bool isSystem = folder.path == systemUnits;
  const std::span<const std::string_view> folders =
      isSystem ? std::span<const std::string_view>(systemUnitFolders) : userUnitFolders;
  if (auto found = firstWith(folders, folder.path, name)) return found;
  if (const auto general = templateOf(name); !general.empty()) {
    if (auto found = existing(pathOf(folder.path, general))) return found;
    if (auto found = firstWith(folders, folder.path, general)) return found;
  }
  // The service manager generates a service for each script that has no unit of the same name. The name of
  // the script may end in ".sh", which the name of the service lacks.
  constexpr std::string_view service = ".service";
  if (!isSystem || !name.ends_with(service)) return std::nullopt;
  const auto script = pathOf(initScripts, name.substr(0, name.size() - service.size()));
  if (auto found = existing(script)) return found;
  return existing(script + ".sh");
}

// Desktops add folders of their own below /etc/xdg to the search path.
std::optional<std::string> otherEntry(std::string_view own, std::string_view name) {
  if (auto found = firstWith(autostartFolders, own, name)) return found;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(std::string(configuration).c_str()),
                                                    ::closedir);
  while (const auto* entry = entries ? ::readdir(entries.get()) : nullptr) {
    if (entry->d_name[0] == '.') continue;
    const auto folder = pathOf(configuration, entry->d_name) + "/autostart";
    if (auto found = existing(pathOf(folder, name)); found && !isSameFolder(folder, own)) return found;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> otherDefinitionOf(const helper::SystemStartupFolder& folder,
                                             std::string_view name) {
  const bool isEntry = folder.suffixes.data() == helper::desktopEntrySuffixes.data();
  return isEntry ? otherEntry(folder.path, name) : otherUnit(folder, name);
}

}  // namespace vorli::linuxhost

#include "linux/session/LoginItem.h"

#include "formats/AutostartEntry.h"
#include "linux/session/UserFolders.h"
#include "posix/Environment.h"
#include "posix/FileContent.h"
#include "posix/FileDescriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

namespace fs = std::filesystem;

constexpr const char* ownEntryName = "com.kv.vorli.desktop";
constexpr int notRegistered = 0, enabled = 1;
constexpr std::size_t largestOwnEntry = std::size_t{1024} * 1024;

// Returns the parts of a list variable; an empty value counts as unset.
std::vector<std::string> listIn(const char* variable, const char* whenUnset) {
  const auto value = posix::environmentVariable(variable);
  return posix::splitList(value.empty() ? whenUnset : value);
}

std::string failure(const char* what, const fs::path& file) {
  return std::string(what) + " " + file.string() + ": " + std::strerror(errno);
}

// Replaces the file in one step: a session that starts at this moment reads either the old file or the new
// one.
std::expected<void, std::string> replaceFile(const fs::path& file, std::string_view text) {
  std::error_code failed;
  fs::create_directories(file.parent_path(), failed);  // if it fails, so does the next step
  const fs::path fresh = file.parent_path() / ("." + file.filename().string() + ".new");
  {
    const posix::FileDescriptor out(
        open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!out) return std::unexpected(failure("cannot write", fresh));
    if (!posix::writeAll(out.get(), text) || fsync(out.get()) != 0) {
      auto reason = failure("cannot write", fresh);
      unlink(fresh.c_str());
      return std::unexpected(std::move(reason));
    }
  }
  if (rename(fresh.c_str(), file.c_str()) == 0) return {};
  auto reason = failure("cannot replace", file);
  unlink(fresh.c_str());
  return std::unexpected(std::move(reason));
}

// Returns the text of an entry; empty for a mask, which is a link to a device. Error: why the entry cannot be
// read whole.
std::expected<std::string, std::string> readWhole(const fs::path& file) {
  const posix::FileDescriptor entry(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat info {};
  if (!entry || fstat(entry.get(), &info) != 0) return std::unexpected(failure("cannot read", file));
  if (!S_ISREG(info.st_mode)) return {};
  if (info.st_size > static_cast<off_t>(largestOwnEntry))
    return std::unexpected("too large: " + file.string());
  auto text = posix::contentOf(entry, largestOwnEntry);
  if (!text) return std::unexpected(failure("cannot read", file));
  return std::move(*text);
}

// True when the name itself exists. Does not follow a link: a mask is a link to /dev/null and must count as a
// file.
bool existsItself(const fs::path& file) {
  struct stat info {};
  return lstat(file.c_str(), &info) == 0;
}

std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    const auto name = entry->path().filename().string();
    if (name.ends_with(".desktop") && !name.starts_with('.')) names.insert(name);
  }
  return names;
}

// Searches PATH for a name without a slash, as a session does.
fs::path foundProgram(const std::string& program) {
  if (program.find('/') != std::string::npos) return program;
  for (const auto& folder : listIn("PATH", "/usr/local/bin:/usr/bin:/bin")) {
    const fs::path file = fs::path(folder) / program;
    if (access(file.c_str(), X_OK) == 0) return file;
  }
  return program;
}

// True unless TryExec names a program that is not installed: a session skips such an entry.
bool isInstalled(const std::string& tryExec) {
  return tryExec.empty() || access(foundProgram(tryExec).c_str(), X_OK) == 0;
}

}  // namespace

AutostartPlaces AutostartPlaces::ofThisSession(const std::string& homeDirectory) {
  AutostartPlaces places;
  places.user = fs::path(configFolder(homeDirectory)) / "autostart";
  for (const auto& folder : listIn("XDG_CONFIG_DIRS", "/etc/xdg"))
    places.systems.push_back(fs::path(folder) / "autostart");
  places.desktops = listIn("XDG_CURRENT_DESKTOP", "");
  return places;
}

int LoginItem::status() {
  return activeEntries().empty() ? notRegistered : enabled;
}

std::expected<void, std::string> LoginItem::registerItem() {
  if (!activeEntries().empty()) return {};
  return replaceFile(places_.user / ownEntryName, formats::autostartEntryText(program_.string()));
}

std::expected<void, std::string> LoginItem::unregisterItem() {
  for (const auto& name : activeEntries()) {
    if (auto result = switchOff(name); !result) return result;
  }
  return {};
}

std::expected<void, std::string> LoginItem::switchOff(const std::string& name) const {
  const fs::path own = places_.user / name;
  const bool isUsers = existsItself(own);
  // Removing a file that overrides one of the system's would make the latter effective again.
  if (name == ownEntryName && isUsers && !isInSystem(name)) {
    if (unlink(own.c_str()) == 0 || errno == ENOENT) return {};
    return std::unexpected(failure("cannot remove", own));
  }
  const auto text = readWhole(effectiveFile(name));
  if (!text) return std::unexpected(text.error());
  return replaceFile(own, formats::switchedOff(*text));
}

// Names of the files that make a session start this program.
std::vector<std::string> LoginItem::activeEntries() const {
  std::set<std::string> names = namesIn(places_.user);
  for (const auto& folder : places_.systems) names.merge(namesIn(folder));
  std::vector<std::string> active;
  for (const auto& name : names) {
    if (startsThisProgram(effectiveFile(name))) active.push_back(name);
  }
  return active;
}

fs::path LoginItem::effectiveFile(const std::string& name) const {
  if (existsItself(places_.user / name)) return places_.user / name;
  for (const auto& folder : places_.systems) {
    if (existsItself(folder / name)) return folder / name;
  }
  return {};
}

bool LoginItem::isInSystem(const std::string& name) const {
  for (const auto& folder : places_.systems) {
    if (existsItself(folder / name)) return true;
  }
  return false;
}

bool LoginItem::startsThisProgram(const fs::path& file) const {
  const auto text = readWhole(file);
  if (!text) return false;
  const auto entry = formats::parseAutostartEntry(*text);
  if (!entry.startsIn(places_.desktops) || !isInstalled(entry.tryExec)) return false;
  const auto program = foundProgram(entry.program);
  std::error_code failed;
  return program == program_ || fs::equivalent(program, program_, failed);
}

}  // namespace vorli::linuxhost

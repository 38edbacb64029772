#include "linux/startup/InstalledApplications.h"

#include "base/UnicodeText.h"
#include "linux/applications/Interpreter.h"
#include "posix/FileContent.h"

#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::string_view suffix = ".desktop";
constexpr std::size_t largestEntry = std::size_t{1024} * 1024;

std::string realPath(const std::string& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) ? resolved : std::string();
}

std::string foundProgram(const std::string& program, const std::vector<std::string>& folders) {
  if (program.empty()) return {};
  if (program.find('/') != std::string::npos) return realPath(program);
  for (const auto& folder : folders) {
    const auto path = folder + "/" + program;
    if (access(path.c_str(), X_OK) == 0) return realPath(path);
  }
  return {};
}

}  // namespace

std::optional<std::string> InstalledApplications::urlForApplication(std::string_view bundleIdentifier) {
  readOnce();
  auto found = byID_.find(bundleIdentifier);
  if (found == byID_.end()) {
    const auto other = idByLowerID_.find(lowercased(bundleIdentifier));
    if (other != idByLowerID_.end()) found = byID_.find(other->second);
  }
  if (found == byID_.end() || found->second.name.empty()) return std::nullopt;
  return found->second.path;
}

std::optional<std::string> InstalledApplications::urlForProgram(const std::string& path) {
  readOnce();
  const auto found = idByProgram_.find(realPathOf(path));
  if (found == idByProgram_.end() || found->second.empty()) return std::nullopt;
  return byID_.at(found->second).path;
}

std::optional<ports::BundleInfo> InstalledApplications::bundle(const std::string& path) {
  readOnce();
  const auto found = idByPath_.find(path);
  if (found == idByPath_.end()) return std::nullopt;
  return ports::BundleInfo{found->second, byID_.at(found->second).name, std::nullopt};
}

InstalledApplications::FolderTimes InstalledApplications::folderTimes() const {
  FolderTimes times;
  for (const auto& folder : places_.folders) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) status = {};
    times.emplace_back(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
  }
  return times;
}

void InstalledApplications::readOnce() {
  if (!readAt_) lookAgain();
}

const std::string& InstalledApplications::realPathOf(const std::string& program) {
  const auto [place, isFirst] = realPaths_.try_emplace(program);
  if (isFirst) place->second = realPath(program);
  return place->second;
}

void InstalledApplications::lookAgain() {
  realPaths_.clear();
  auto times = folderTimes();
  if (times == readAt_) return;
  readAt_ = std::move(times);
  byID_.clear();
  idByLowerID_.clear();
  idByPath_.clear();
  idByProgram_.clear();
  for (const auto& folder : places_.folders) readFolder(folder);
}

void InstalledApplications::readFolder(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  while (const dirent* item = entries ? readdir(entries.get()) : nullptr) {
    const std::string name = item->d_name;
    if (name.starts_with('.') || !name.ends_with(suffix)) continue;
    const auto id = name.substr(0, name.size() - suffix.size());
    if (byID_.contains(id)) continue;
    const auto path = folder + "/" + name;
    const auto text = posix::readRegular(path, largestEntry);
    if (!text) continue;
    auto entry = formats::parseDesktopEntry(*text, places_.locales);
    if (!entry) continue;
    entry->path = path;
    add(id, *entry);
  }
}

// A hidden entry, which has no name, hides the same id in later folders.
void InstalledApplications::add(const std::string& id, const formats::DesktopEntry& entry) {
  byID_[id] = {entry.path, entry.name};
  if (entry.hidden) return;
  idByLowerID_.emplace(lowercased(id), id);
  idByPath_[entry.path] = id;
  const auto program = foundProgram(entry.program, places_.programPath);
  if (!entry.isVisible() || program.empty() || isInterpreter(program)) return;
  const auto [place, isFirst] = idByProgram_.emplace(program, id);
  if (!isFirst) place->second.clear();
}

}  // namespace vorli::linuxhost

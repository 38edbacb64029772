#include "linux/ApplicationMatcher.h"

#include "linux/ProcessEvidence.h"
#include "linux/ProcessStart.h"
#include "linux/SmallFile.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdlib>

namespace vorli::linuxhost {

namespace {

std::string_view unifiedPath(std::string_view cgroup) {
  const auto start = cgroup.find("0::");
  if (start == std::string_view::npos) return {};
  cgroup.remove_prefix(start + 3);
  return cgroup.substr(0, cgroup.find('\n'));
}

// What an interpreter was told to run, as an absolute path without links; empty when it is no file.
std::string scriptOf(const std::string& process) {
  const auto words = commandLineWords(readSmallFile(process + "/cmdline").value_or(""));
  const auto script = std::find_if(words.begin() + (words.empty() ? 0 : 1), words.end(),
                                   [](const auto& word) { return !word.starts_with('-'); });
  if (script == words.end() || script->empty()) return {};
  const auto path = script->starts_with('/') ? *script : readLink(process + "/cwd") + "/" + *script;
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) ? resolved : std::string();
}

}  // namespace

std::string programFileOf(std::int32_t pid, const std::string& root) {
  auto path = readLink(root + "/proc/" + std::to_string(pid) + "/exe");
  constexpr std::string_view mark = " (deleted)";
  if (path.ends_with(mark)) path.resize(path.size() - mark.size());
  return path;
}

ApplicationMatcher::ApplicationMatcher(const DesktopEntryIndex& entries, std::string root)
    : entries_(entries), root_(std::move(root)) {}

const DesktopEntry* ApplicationMatcher::match(std::int32_t pid,
                                              std::span<const DesktopWindow> windows) const {
  const std::string process = root_ + "/proc/" + std::to_string(pid);
  if (const auto* entry = byFlatpak(process)) return entry;
  if (const auto* entry = byControlGroup(pid, process)) return entry;
  if (const auto* entry = byLaunchRecord(pid, process)) return entry;
  for (const auto& window : windows) {
    if (const auto* entry = byWindow(window)) return entry;
  }
  return byExecutable(pid, process);
}

const DesktopEntry* ApplicationMatcher::byFlatpak(const std::string& process) const {
  const auto info = readSmallFile(process + "/root/.flatpak-info");
  return info ? entries_.byID(flatpakIDFromInfo(*info)) : nullptr;
}

const DesktopEntry* ApplicationMatcher::byControlGroup(std::int32_t pid, const std::string& process) const {
  const auto cgroup = readSmallFile(process + "/cgroup");
  if (!cgroup) return nullptr;
  const auto evidence = evidenceFromCgroup(*cgroup);
  for (const auto& id : evidence.ids) {
    const auto* entry = entries_.byID(id);
    if (!entry) continue;
    // A shell in a terminal, and everything started in it, inherits the terminal's unit.
    const bool isUnit = evidence.kind == CgroupEvidence::Kind::systemdUnit;
    if (!isUnit || byExecutable(pid, process) == entry || leadsItsControlGroup(pid, *cgroup)) return entry;
    return nullptr;
  }
  return nullptr;
}

// True for the oldest process of the group and for those that run the same program.
bool ApplicationMatcher::leadsItsControlGroup(std::int32_t pid, const std::string& cgroup) const {
  const auto members =
      readSmallFile(root_ + "/sys/fs/cgroup" + std::string(unifiedPath(cgroup)) + "/cgroup.procs");
  if (!members) return false;
  std::string_view rest = *members;
  std::int32_t oldest = 0;
  std::uint64_t oldestStart = UINT64_MAX;
  while (!rest.empty()) {
    std::int32_t member = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), member);
    const auto stat = readSmallFile(root_ + "/proc/" + std::to_string(member) + "/stat");
    const auto start = stat ? parseProcessStart(*stat).value_or(ProcessStart{}).ticks : 0;
    if (start != 0 && start < oldestStart) {
      oldest = member;
      oldestStart = start;
    }
    const auto end = rest.find('\n');
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  if (oldest == pid) return true;
  const auto own = programFileOf(pid, root_);
  return !own.empty() && own == programFileOf(oldest, root_);
}

const DesktopEntry* ApplicationMatcher::byLaunchRecord(std::int32_t pid, const std::string& process) const {
  const auto environment = readSmallFile(process + "/environ");
  if (!environment) return nullptr;
  auto file = launchedDesktopFile(*environment, pid);
  if (!file.ends_with(".desktop")) return nullptr;
  file.resize(file.size() - 8);
  const auto* entry = entries_.byID(file.substr(file.rfind('/') + 1));
  return entry && entry->path == file + ".desktop" ? entry : nullptr;
}

const DesktopEntry* ApplicationMatcher::byWindow(const DesktopWindow& window) const {
  if (const auto* entry = entries_.byID(window.gtkApplicationID)) return entry;
  if (!window.kdeDesktopFile.empty()) {
    std::string id = window.kdeDesktopFile.substr(window.kdeDesktopFile.rfind('/') + 1);
    if (id.ends_with(".desktop")) id.resize(id.size() - 8);
    if (const auto* entry = entries_.byID(id)) return entry;
  }
  using Lookup = const DesktopEntry* (DesktopEntryIndex::*)(std::string_view) const;
  for (const Lookup lookup : {&DesktopEntryIndex::byStartupWMClass, &DesktopEntryIndex::byIDIgnoringCase,
                              &DesktopEntryIndex::byLastPiece}) {
    for (const auto& name : {window.wmClass, window.wmInstance}) {
      const auto* entry = name.empty() ? nullptr : (entries_.*lookup)(name);
      if (entry) return entry;
    }
  }
  return nullptr;
}

const DesktopEntry* ApplicationMatcher::byExecutable(std::int32_t pid, const std::string& process) const {
  const auto program = programFileOf(pid, root_);
  return entries_.byProgram(isInterpreter(program) ? scriptOf(process) : program);
}

}  // namespace vorli::linuxhost

#include "linux/applications/ApplicationMatcher.h"

#include "formats/ProcStat.h"
#include "formats/ProcessEvidence.h"
#include "linux/applications/ControlGroup.h"
#include "linux/applications/Interpreter.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace vorli::linuxhost {

namespace {

std::string_view unifiedPath(std::string_view cgroup) {
  const auto start = cgroup.find("0::");
  if (start == std::string_view::npos) return {};
  cgroup.remove_prefix(start + 3);
  return cgroup.substr(0, cgroup.find('\n'));
}

// True for folders that many programs share. The other programs there are unrelated.
bool isSharedFolder(std::string_view folder) {
  static constexpr std::string_view ofTheSystem[] = {
      "/bin",     "/sbin",        "/usr",       "/usr/bin",   "/usr/sbin",      "/usr/games",
      "/usr/lib", "/usr/libexec", "/usr/share", "/usr/local", "/usr/local/bin", "/usr/local/lib",
      "/opt",     "/snap/bin",    "/app",       "/app/bin",   "/tmp",           "/var/tmp",
  };
  static constexpr std::string_view ofTheUser[] = {"",
                                                   "/bin",
                                                   "/.local",
                                                   "/.local/bin",
                                                   "/.local/lib",
                                                   "/.local/opt",
                                                   "/.local/share",
                                                   "/Applications",
                                                   "/Desktop",
                                                   "/Downloads"};
  if (folder.empty() || std::ranges::find(ofTheSystem, folder) != std::end(ofTheSystem)) return true;
  const char* home = std::getenv("HOME");
  if (!home || !folder.starts_with(home)) return false;
  folder.remove_prefix(std::string_view(home).size());
  return std::ranges::find(ofTheUser, folder) != std::end(ofTheUser);
}

std::string folderOf(std::string_view path) {
  return std::string(path.substr(0, path.rfind('/')));
}

bool isBusProxy(std::string_view program) {
  return program.substr(program.rfind('/') + 1) == "xdg-dbus-proxy";
}

}  // namespace

ApplicationMatcher::ApplicationMatcher(const DesktopEntryIndex& entries, std::string root)
    : entries_(entries), root_(std::move(root)) {}

const formats::DesktopEntry* ApplicationMatcher::match(std::int32_t pid,
                                                       std::span<const DesktopWindow> windows,
                                                       std::string_view busID) const {
  const std::string process = root_ + "/proc/" + std::to_string(pid);
  const auto program = programFileOf(pid, root_);
  if (isBusProxy(program)) return nullptr;
  if (const auto* entry = entries_.byID(sandboxOf(pid))) return entry;
  if (const auto* entry = byControlGroup(pid, process)) return entry;
  if (const auto* entry = byLaunchRecord(pid, process)) return entry;
  if (const auto* entry = entries_.byID(busID)) return entry;
  if (const auto* entry = byWindows(pid, windows)) return entry;
  if (const auto* entry = byExecutable(pid)) return entry;
  if (const auto* entry = byParentScript(pid)) return entry;
  return isInterpreter(program) ? nullptr : byScriptBeside(program);
}

std::string ApplicationMatcher::sandboxOf(std::int32_t pid) const {
  const auto info = readSmallFile(root_ + "/proc/" + std::to_string(pid) + "/root/.flatpak-info");
  return info ? formats::flatpakIDFromInfo(*info) : std::string();
}

const formats::DesktopEntry* ApplicationMatcher::byControlGroup(std::int32_t pid,
                                                                const std::string& process) const {
  const auto cgroup = readSmallFile(process + "/cgroup");
  if (!cgroup) return nullptr;
  const auto evidence = formats::evidenceFromCgroup(*cgroup);
  for (const auto& id : evidence.ids) {
    const auto* entry = entries_.byID(id);
    if (!entry) continue;
    // A shell in a terminal, and everything started in it, inherits the terminal's unit.
    const bool isUnit = evidence.kind == formats::CgroupEvidence::Kind::systemdUnit;
    if (!isUnit || byExecutable(pid) == entry || leadsItsControlGroup(pid, *cgroup)) return entry;
    return nullptr;
  }
  return nullptr;
}

// True for the oldest process of the group and for those that run the same program.
bool ApplicationMatcher::leadsItsControlGroup(std::int32_t pid, const std::string& cgroup) const {
  const auto oldest = oldestMember(root_ + "/sys/fs/cgroup" + std::string(unifiedPath(cgroup)), root_);
  if (oldest == pid) return true;
  const auto own = programFileOf(pid, root_);
  return !own.empty() && own == programFileOf(oldest, root_);
}

const formats::DesktopEntry* ApplicationMatcher::byLaunchRecord(std::int32_t pid,
                                                                const std::string& process) const {
  const auto environment = readSmallFile(process + "/environ");
  if (!environment) return nullptr;
  return entries_.byPath(formats::launchedDesktopFile(*environment, pid));
}

// Windows disagree when one process serves several entries, as an office suite or a browser does. It is then
// the program as a whole, not one of its parts.
const formats::DesktopEntry* ApplicationMatcher::byWindows(std::int32_t pid,
                                                           std::span<const DesktopWindow> windows) const {
  const formats::DesktopEntry* first = nullptr;
  bool agree = true;
  for (const auto& window : windows) {
    const auto* entry = byWindow(window);
    if (entry && first && entry != first) agree = false;
    if (!first) first = entry;
  }
  if (agree) return first;
  const auto program = startedProgramOf(pid);
  const auto* whole = entries_.byPlainProgram(program);
  if (!whole) whole = byScriptBeside(program);
  return whole ? whole : first;
}

const formats::DesktopEntry* ApplicationMatcher::byWindow(const DesktopWindow& window) const {
  if (const auto* entry = entries_.byID(window.gtkApplicationID)) return entry;
  if (!window.kdeDesktopFile.empty()) {
    std::string id = window.kdeDesktopFile.substr(window.kdeDesktopFile.rfind('/') + 1);
    if (id.ends_with(".desktop")) id.resize(id.size() - 8);
    if (const auto* entry = entries_.byID(id)) return entry;
  }
  using Lookup = const formats::DesktopEntry* (DesktopEntryIndex::*)(std::string_view) const;
  for (const Lookup lookup : {&DesktopEntryIndex::byStartupWMClass, &DesktopEntryIndex::byIDIgnoringCase,
                              &DesktopEntryIndex::byLastPiece}) {
    for (const auto& name : {window.wmClass, window.wmInstance}) {
      const auto* entry = name.empty() ? nullptr : (entries_.*lookup)(name);
      if (entry) return entry;
    }
  }
  return nullptr;
}

const formats::DesktopEntry* ApplicationMatcher::byExecutable(std::int32_t pid) const {
  return entries_.byProgram(startedProgramOf(pid));
}

std::string ApplicationMatcher::startedProgramOf(std::int32_t pid) const {
  auto program = programFileOf(pid, root_);
  return isInterpreter(program) ? scriptOf(pid, root_) : program;
}

// The entry's script may wait for the program that it has started.
const formats::DesktopEntry* ApplicationMatcher::byParentScript(std::int32_t pid) const {
  const auto stat = readSmallFile(root_ + "/proc/" + std::to_string(pid) + "/stat");
  const auto parent = stat ? formats::parseProcStat(*stat).value_or(formats::ProcStat{}).parentPID : 0;
  if (parent <= 1 || !isShell(programFileOf(parent, root_))) return nullptr;
  return entries_.byProgram(scriptOf(parent, root_));
}

// The entry's script may have become the program, which is in the same folder or in one inside of it. Deeper
// folders may hold other programs, such as the games of a launcher.
const formats::DesktopEntry* ApplicationMatcher::byScriptBeside(const std::string& program) const {
  auto folder = folderOf(program);
  for (int level = 0; level < 2 && !isSharedFolder(folder); ++level, folder = folderOf(folder)) {
    if (const auto* entry = entries_.byScriptIn(folder)) return entry;
  }
  return nullptr;
}

}  // namespace vorli::linuxhost

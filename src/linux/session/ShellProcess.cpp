#include "linux/session/ShellProcess.h"

#include "formats/ProcStat.h"
#include "formats/ProcessEvidence.h"
#include "linux/kernel/SmallFile.h"
#include "posix/Environment.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t largestArguments = 4 * 1024 * 1024;  // more than the kernel lets a process have

std::string_view variableOf(const std::vector<std::string>& environment, std::string_view name) {
  for (const std::string_view entry : environment) {
    if (entry.starts_with(name) && entry.substr(name.size()).starts_with('='))
      return entry.substr(name.size() + 1);
  }
  return {};
}

// Leaves out the screen of an X display: ":0.0" and ":0" are the same server.
std::string_view withoutScreen(std::string_view display) {
  const auto colon = display.rfind(':');
  return colon == std::string_view::npos ? display : display.substr(0, display.find('.', colon));
}

bool isSameOrUnknown(std::string_view one, std::string_view other) {
  return one.empty() || other.empty() || one == other;
}

bool belongsTo(const ShellSession& session, const std::vector<std::string>& environment) {
  return isSameOrUnknown(withoutScreen(session.display), withoutScreen(variableOf(environment, "DISPLAY"))) &&
         isSameOrUnknown(session.waylandDisplay, variableOf(environment, "WAYLAND_DISPLAY"));
}

// Takes the program's file from the kernel's link, because the first argument may be any text. After an
// upgrade, the new version is at the same path.
std::vector<std::string> commandOf(const std::string& folder) {
  constexpr std::string_view removed = " (deleted)";
  auto command = formats::commandLineWords(readSmallFile(folder + "/cmdline", largestArguments).value_or(""));
  if (command.empty()) return {};  // it has ended, but its parent has not noticed yet
  auto program = readLink(folder + "/exe");
  if (program.ends_with(removed)) program.resize(program.size() - removed.size());
  if (!program.empty()) command.front() = std::move(program);
  return command;
}

// The kernel reports it in the form of a command line.
std::vector<std::string> environmentOf(const std::string& folder) {
  return formats::commandLineWords(readSmallFile(folder + "/environ", largestArguments).value_or(""));
}

std::string unitOf(const std::string& folder) {
  auto groups = readSmallFile(folder + "/cgroup").value_or("");
  groups.erase(std::min(groups.find('\n'), groups.size()));
  return groups.substr(groups.rfind('/') + 1);
}

bool isOfThisUser(const std::string& folder) {
  struct stat info {};
  return stat(folder.c_str(), &info) == 0 && info.st_uid == getuid();
}

std::optional<ShellProgram> programOf(const std::string& folder, std::span<const ShellProgram> programs) {
  auto name = readSmallFile(folder + "/comm").value_or("");
  if (name.ends_with('\n')) name.pop_back();
  const auto found = std::ranges::find(programs, name, &ShellProgram::processName);
  if (found == programs.end()) return std::nullopt;
  return *found;
}

std::optional<ShellProcess> shellProcess(std::int32_t pid, std::span<const ShellProgram> programs,
                                         const ShellSession& session, const std::string& root) {
  const auto folder = root + "/proc/" + std::to_string(pid);
  if (!isOfThisUser(folder)) return std::nullopt;
  const auto program = programOf(folder, programs);
  if (!program) return std::nullopt;
  ShellProcess process{.program = *program,
                       .pid = pid,
                       .command = commandOf(folder),
                       .folder = readLink(folder + "/cwd"),
                       .environment = environmentOf(folder),
                       .unit = unitOf(folder)};
  const auto text = readSmallFile(folder + "/stat").value_or("");
  const auto stat = formats::parseProcStat(text);
  if (!stat || process.command.empty() || !belongsTo(session, process.environment)) return std::nullopt;
  process.startTicks = stat->startTicks;
  return process;
}

std::size_t placeOf(const ShellProgram& program, std::span<const ShellProgram> programs) {
  return static_cast<std::size_t>(
      std::ranges::find(programs, program.processName, &ShellProgram::processName) - programs.begin());
}

}  // namespace

ShellSession ShellSession::ofThisProgram() {
  return {posix::environmentVariable("DISPLAY"), posix::environmentVariable("WAYLAND_DISPLAY")};
}

std::vector<ShellProcess> shellProcesses(std::span<const ShellProgram> programs, const ShellSession& session,
                                         const std::string& root) {
  std::vector<ShellProcess> processes;
  std::error_code failed;
  // A range-based loop would throw when it cannot advance.
  for (std::filesystem::directory_iterator entry(root + "/proc", failed), end; !failed && entry != end;
       entry.increment(failed)) {
    const auto name = entry->path().filename().string();
    std::int32_t pid = 0;
    const auto [rest, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error != std::errc() || rest != name.data() + name.size()) continue;
    if (auto process = shellProcess(pid, programs, session, root)) processes.push_back(std::move(*process));
  }
  std::ranges::sort(processes, {}, [programs](const ShellProcess& process) {
    return std::pair(placeOf(process.program, programs), process.startTicks);
  });
  return processes;
}

}  // namespace vorli::linuxhost

#include "linux/applications/ProcessFamily.h"

#include "formats/ProcStat.h"
#include "linux/applications/Interpreter.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace vorli::linuxhost {
namespace {

constexpr int deepestFamily = 32;

// True for service and session managers: they start applications but are not part of them.
bool endsFamily(std::string_view program) {
  static constexpr std::string_view managers[] = {"systemd", "xfce4-session", "gnome-session-binary",
                                                  "plasma_session"};
  const auto base = program.substr(program.rfind('/') + 1);
  return base.empty() || base.starts_with("dbus-") || std::ranges::find(managers, base) != std::end(managers);
}

// Folder of a program if it belongs to that program alone; empty for folders of the whole system.
std::string_view privateFolder(std::string_view program) {
  static constexpr std::string_view shared[] = {"/usr/bin",     "/usr/sbin",      "/bin",
                                                "/sbin",        "/usr/local/bin", "/usr/games",
                                                "/usr/libexec", "/usr/lib",       "/snap/bin"};
  const auto folder = program.substr(0, program.rfind('/'));
  return std::ranges::find(shared, folder) == std::end(shared) ? folder : std::string_view();
}

}  // namespace

std::int32_t ProcessFamily::nearestApplication(std::int32_t pid, Kinship kinship,
                                               const std::function<bool(std::int32_t)>& isApplication) const {
  for (int depth = 0; depth < deepestFamily; ++depth) {
    const auto parent = parentOf(pid);
    if (parent <= 1 || !areRelatives(pid, parent, kinship)) return 0;
    if (isApplication(parent)) return parent;
    pid = parent;
  }
  return 0;
}

std::int32_t ProcessFamily::parentOf(std::int32_t pid) const {
  const auto stat = readSmallFile(root_ + "/proc/" + std::to_string(pid) + "/stat");
  return stat ? formats::parseProcStat(*stat).value_or(formats::ProcStat{}).parentPID : 0;
}

bool ProcessFamily::areRelatives(std::int32_t child, std::int32_t parent, Kinship kinship) const {
  const auto program = programFileOf(child, root_), parentProgram = programFileOf(parent, root_);
  if (program.empty() || endsFamily(parentProgram)) return false;
  if (kinship == Kinship::script && (isInterpreter(program) || isInterpreter(parentProgram))) {
    const auto script = scriptOf(child, root_);
    return program == parentProgram && !script.empty() && script == scriptOf(parent, root_);
  }
  if (program == parentProgram) return true;
  return !privateFolder(program).empty() && privateFolder(program) == privateFolder(parentProgram);
}

}  // namespace vorli::linuxhost

#pragma once

#include "linux/session/ShellPrograms.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The displays of a session; empty where it has none of that kind.
struct ShellSession {
  std::string display;
  std::string waylandDisplay;

  static ShellSession ofThisProgram();
};

/// A running panel or file manager, with all that is needed to start it again as it was.
struct ShellProcess {
  ShellProgram program;
  std::int32_t pid = 0;
  std::uint64_t startTicks = 0;
  std::vector<std::string> command;  // the program's file, then its arguments
  std::string folder;
  std::vector<std::string> environment;  // NAME=value
  std::string unit;                      // last part of its control group
};

/// Returns this user's processes of the session that run one of `programs`, in the order of the list, and by
/// start time for each program. A process without a display in its environment is included. `root` is the
/// prefix of the paths in /proc. Walks all of /proc, which takes milliseconds. Any thread.
std::vector<ShellProcess> shellProcesses(std::span<const ShellProgram> programs, const ShellSession& session,
                                         const std::string& root = "");

}  // namespace vorli::linuxhost

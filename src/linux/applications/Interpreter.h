#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// True for programs that run other programs. Their processes are identified by the script that they run.
bool isInterpreter(std::string_view programPath);

/// True for the interpreters of start scripts.
bool isShell(std::string_view programPath);

/// Script that an interpreter's process runs, as an absolute path without links; empty when it runs none, is
/// gone or may not be read. `root` is the prefix of the paths in /proc.
std::string scriptOf(std::int32_t pid, const std::string& root = "");

/// Path of the program file that a process runs, without links; its original name when an upgrade has
/// replaced it. Empty when the process is gone or may not be read. `root` is the prefix of every path that is
/// read.
std::string programFileOf(std::int32_t pid, const std::string& root = "");

}  // namespace vorli::linuxhost

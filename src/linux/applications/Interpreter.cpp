#include "linux/applications/Interpreter.h"

#include "formats/ProcessEvidence.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>

namespace vorli::linuxhost {
namespace {

constexpr std::string_view shells[] = {"sh", "bash", "dash", "fish", "zsh"};
constexpr std::string_view languages[] = {
    "python",
    "perl",
    "ruby",
    "php",
    "lua",
    "luajit",
    "tclsh",
    "wish",
    "guile",
    "node",
    "nodejs",
    "electron",
    "deno",
    "bun",
    "java",
    "gjs",
    "gjs-console",
    "qml",
    "mono",
    "wine",
    "dotnet",
    "wine-preloader",
    "wine64-preloader",
    "mono-sgen",
    "mono-boehm",
};

// Returns the file name without a version at its end. The rest is compared as a whole, because the name of an
// application's own program may begin like an interpreter's.
std::string_view unversionedName(std::string_view programPath) {
  auto name = programPath.substr(programPath.rfind('/') + 1);
  while (!name.empty() && (name.back() == '.' || (name.back() >= '0' && name.back() <= '9')))
    name.remove_suffix(1);
  return name;
}

}  // namespace

bool isShell(std::string_view programPath) {
  return std::ranges::find(shells, unversionedName(programPath)) != std::end(shells);
}

bool isInterpreter(std::string_view programPath) {
  return isShell(programPath) ||
         std::ranges::find(languages, unversionedName(programPath)) != std::end(languages);
}

std::string scriptOf(std::int32_t pid, const std::string& root) {
  const std::string process = root + "/proc/" + std::to_string(pid);
  const auto words = formats::commandLineWords(readSmallFile(process + "/cmdline").value_or(""));
  const auto script = std::find_if(words.begin() + (words.empty() ? 0 : 1), words.end(),
                                   [](const auto& word) { return !word.starts_with('-'); });
  if (script == words.end() || script->empty()) return {};
  const auto path = script->starts_with('/') ? *script : readLink(process + "/cwd") + "/" + *script;
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) ? resolved : std::string();
}

std::string programFileOf(std::int32_t pid, const std::string& root) {
  auto path = readLink(root + "/proc/" + std::to_string(pid) + "/exe");
  constexpr std::string_view mark = " (deleted)";
  if (path.ends_with(mark)) path.resize(path.size() - mark.size());
  return path;
}

}  // namespace vorli::linuxhost

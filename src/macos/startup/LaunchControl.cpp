#include "macos/startup/LaunchControl.h"

#include "macos/startup/SystemTool.h"

namespace vorli::machost {

namespace {

constexpr const char* tool = "/bin/launchctl";

}  // namespace

void LaunchControl::load(const std::string& path) {
  runTool(tool, {"load", path});
}

void LaunchControl::unload(const std::string& path) {
  runTool(tool, {"unload", path});
}

void LaunchControl::reload() {}

}  // namespace vorli::machost

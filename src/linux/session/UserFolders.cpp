#include "linux/session/UserFolders.h"

#include <cstdlib>
#include <string_view>

namespace vorli::linuxhost {

namespace {

std::string baseFolder(const char* variable, const std::string& home, std::string_view standard) {
  const char* value = std::getenv(variable);
  std::string folder = value && *value == '/' ? std::string(value) : home + std::string(standard);
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

}  // namespace

std::string configFolder(const std::string& homeDirectory) {
  return baseFolder("XDG_CONFIG_HOME", homeDirectory, "/.config");
}

std::string dataFolder(const std::string& homeDirectory) {
  return baseFolder("XDG_DATA_HOME", homeDirectory, "/.local/share");
}

std::string logFolder(const std::string& homeDirectory) {
  return baseFolder("XDG_STATE_HOME", homeDirectory, "/.local/state") + "/Vorli/Logs";
}

std::string crashReportFolder(const std::string& homeDirectory) {
  return dataFolder(homeDirectory) + "/Vorli/CrashReports";
}

}  // namespace vorli::linuxhost

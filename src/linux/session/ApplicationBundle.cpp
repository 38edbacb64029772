#include "linux/session/ApplicationBundle.h"

#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

std::string readHome() {
  std::string home;
  if (const char* variable = std::getenv("HOME")) home = variable;
  if (home.empty()) {
    if (const passwd* user = getpwuid(getuid())) home = user->pw_dir;
  }
  while (home.size() > 1 && home.ends_with('/')) home.pop_back();
  return home;
}

}  // namespace

ApplicationBundle::ApplicationBundle() : home_(readHome()) {
  std::error_code failed;
  executable_ = std::filesystem::read_symlink("/proc/self/exe", failed).string();
}

std::optional<std::string> ApplicationBundle::infoString(const std::string& key) const {
  if (key == "CFBundleIdentifier") return "com.kv.vorli";
  if (key == "CFBundleVersion") return VORLI_BUILD_NUMBER;
  if (key == "CFBundleShortVersionString") return VORLI_VERSION;
  return std::nullopt;
}

}  // namespace vorli::linuxhost

#include "linux/helper/HelperFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

bool hasSameContent(const std::string& one, const std::string& other) {
  std::ifstream a(one, std::ios::binary), b(other, std::ios::binary);
  return a && b &&
         std::equal(std::istreambuf_iterator<char>(a), {}, std::istreambuf_iterator<char>(b),
                    std::istreambuf_iterator<char>());
}

}  // namespace

HelperFiles::HelperFiles(std::string programFolder, std::string installedDaemon)
    : programFolder_(std::move(programFolder)), installedDaemon_(std::move(installedDaemon)) {}

bool HelperFiles::hasDaemon() const {
  return find("vorli-helper").has_value();
}

std::optional<std::string> HelperFiles::installer() const {
  return find("vorli-helper-install");
}

bool HelperFiles::bringsOtherThanInstalled() const {
  const auto brought = find("vorli-helper");
  std::error_code error;
  const auto installedSize = std::filesystem::file_size(installedDaemon_, error);
  if (!brought || !installer() || error) return false;
  const auto broughtSize = std::filesystem::file_size(*brought, error);
  return !error && (broughtSize != installedSize || !hasSameContent(*brought, installedDaemon_));
}

std::optional<std::string> HelperFiles::find(const char* name) const {
  for (const char* place : {"/", "/../libexec/vorli/"}) {
    std::string path = programFolder_ + place + name;
    if (access(path.c_str(), X_OK) == 0) return path;
  }
  return std::nullopt;
}

}  // namespace vorli::linuxhost

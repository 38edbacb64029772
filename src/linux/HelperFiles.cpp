#include "linux/HelperFiles.h"

#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

HelperFiles::HelperFiles(std::string programFolder) : programFolder_(std::move(programFolder)) {}

bool HelperFiles::hasDaemon() const {
  return find("vorli-helper").has_value();
}

std::optional<std::string> HelperFiles::installer() const {
  return find("vorli-helper-install");
}

std::optional<std::string> HelperFiles::find(const char* name) const {
  for (const char* place : {"/", "/../libexec/vorli/"}) {
    std::string path = programFolder_ + place + name;
    if (access(path.c_str(), X_OK) == 0) return path;
  }
  return std::nullopt;
}

}  // namespace vorli::linuxhost

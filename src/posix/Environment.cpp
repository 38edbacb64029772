#include "posix/Environment.h"

#include <algorithm>
#include <cstdlib>

namespace vorli::posix {

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::vector<std::string> splitList(std::string_view list, char separator) {
  std::vector<std::string> parts;
  while (!list.empty()) {
    const auto part = list.substr(0, list.find(separator));
    if (!part.empty()) parts.emplace_back(part);
    list.remove_prefix(std::min(part.size() + 1, list.size()));
  }
  return parts;
}

}  // namespace vorli::posix

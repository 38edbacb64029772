#include "linux/kernel/DeviceFolder.h"

#include "base/Blanks.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <dirent.h>
#include <memory>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t mostDevices = 64;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

std::vector<std::string> deviceNames(const std::string& folder, std::string_view prefix) {
  const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
  std::vector<std::string> names;
  while (open && names.size() < mostDevices) {
    const dirent* const entry = readdir(open.get());
    if (!entry) break;
    const std::string_view name = entry->d_name;
    if (!name.starts_with('.') && name.starts_with(prefix)) names.emplace_back(name);
  }
  std::ranges::sort(names);
  return names;
}

std::optional<std::string> readAttribute(const std::string& path) {
  auto text = readSmallFile(path, longestAttribute);
  if (text) *text = withoutBlanks(*text);
  return text;
}

}  // namespace vorli::linuxhost

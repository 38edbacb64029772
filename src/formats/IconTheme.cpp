#include "formats/IconTheme.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace vorli::formats {
namespace {

constexpr std::size_t mostFolders = 2048, mostThemes = 32, longestName = 255;
constexpr int greatestSize = 4096, greatestScale = 8;
constexpr int defaultThreshold = 2;

using ThemeKeys = std::map<std::string_view, std::string_view>;

std::map<std::string_view, ThemeKeys> readGroups(std::string_view text) {
  std::map<std::string_view, ThemeKeys> groups;
  ThemeKeys* group = nullptr;
  while (!text.empty()) {
    const auto line = withoutBlanks(takeLine(text));
    if (line.starts_with('[') && line.ends_with(']')) {
      if (groups.size() > mostFolders) break;
      group = &groups[line.substr(1, line.size() - 2)];
      continue;
    }
    const auto equals = line.find('=');
    if (!group || line.starts_with('#') || equals == line.npos) continue;
    group->emplace(withoutBlanks(line.substr(0, equals)), withoutBlanks(line.substr(equals + 1)));
  }
  return groups;
}

std::string_view themeValue(const ThemeKeys& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found == keys.end() ? std::string_view() : found->second;
}

std::optional<int> themeNumber(const ThemeKeys& keys, std::string_view key, int greatest) {
  const auto number = parseWhole(themeValue(keys, key));
  if (!number || *number > static_cast<std::uint64_t>(greatest)) return std::nullopt;
  return static_cast<int>(*number);
}

bool isThemeName(std::string_view name) {
  return !name.empty() && name.size() <= longestName && name != "." && name != ".." &&
         name.find('\0') == name.npos;
}

bool isInside(std::string_view path) {
  if (path.size() > longestName) return false;
  while (true) {
    const auto slash = path.find('/');
    if (!isThemeName(path.substr(0, slash))) return false;
    if (slash == path.npos) return true;
    path.remove_prefix(slash + 1);
  }
}

std::vector<std::string_view> splitNames(std::string_view list) {
  std::vector<std::string_view> names;
  while (!list.empty()) {
    const auto comma = std::min(list.find(','), list.size());
    if (const auto name = withoutBlanks(list.substr(0, comma)); !name.empty()) names.push_back(name);
    list.remove_prefix(std::min(comma + 1, list.size()));
  }
  return names;
}

std::optional<IconFolder> folderOf(std::string_view path, const ThemeKeys& keys) {
  const auto size = themeNumber(keys, "Size", greatestSize);
  if (!size || *size == 0 || !isInside(path)) return std::nullopt;
  const int scale = std::max(1, themeNumber(keys, "Scale", greatestScale).value_or(1));
  const auto type = themeValue(keys, "Type");
  int least = *size, greatest = *size;
  if (type == "Scalable") {
    least = themeNumber(keys, "MinSize", greatestSize).value_or(*size);
    greatest = themeNumber(keys, "MaxSize", greatestSize).value_or(*size);
  } else if (type != "Fixed") {
    const int threshold = themeNumber(keys, "Threshold", greatestSize).value_or(defaultThreshold);
    least = std::max(1, *size - threshold);
    greatest = *size + threshold;
  }
  if (least > greatest) return std::nullopt;
  return IconFolder{std::string(path), least * scale, greatest * scale};
}

}  // namespace

IconTheme parseIconTheme(std::string_view text) {
  IconTheme theme;
  const auto groups = readGroups(text);
  const auto main = groups.find("Icon Theme");
  if (main == groups.end()) return theme;
  for (const auto name : splitNames(themeValue(main->second, "Inherits"))) {
    if (theme.inherits.size() == mostThemes) break;
    if (isThemeName(name) && name.find('/') == name.npos) theme.inherits.emplace_back(name);
  }
  for (const auto* key : {"Directories", "ScaledDirectories"}) {
    for (const auto path : splitNames(themeValue(main->second, key))) {
      const auto group = groups.find(path);
      if (group == groups.end() || theme.folders.size() == mostFolders) continue;
      if (auto folder = folderOf(path, group->second)) theme.folders.push_back(std::move(*folder));
    }
  }
  return theme;
}

int misfit(const IconFolder& folder, int pixels) {
  constexpr int enlarged = 1 << 16;  // worse than any image that is reduced
  if (folder.leastPixels > pixels) return folder.leastPixels - pixels;
  return folder.greatestPixels < pixels ? enlarged + pixels - folder.greatestPixels : 0;
}

}  // namespace vorli::formats

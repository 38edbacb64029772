#include "linux/session/SystemDescription.h"

#include "base/Blanks.h"
#include "base/UTF8.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sys/utsname.h>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t longestSystemName = 200;

// Reduces text from a foreign file, which may hold anything, to one short line.
std::string cleaned(std::string_view text) {
  text = text.substr(0, std::min(text.find('\n'), text.find('\0')));
  std::string clean = repairedUTF8(withoutBlanks(text.substr(0, longestSystemName)));
  std::replace_if(
      clean.begin(), clean.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return clean;
}

std::string unquoted(std::string_view value) {
  if (value.empty() || (value.front() != '"' && value.front() != '\'')) return std::string(value);
  const char quote = value.front();
  std::string text;
  for (std::size_t i = 1; i < value.size() && value[i] != quote; ++i) {
    if (value[i] == '\\' && quote == '"' && i + 1 < value.size()) ++i;
    text += value[i];
  }
  return text;
}

// Returns the rest of the first line that begins with `start`.
std::optional<std::string_view> lineAfter(std::string_view text, std::string_view start) {
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    if (line.starts_with(start)) return line.substr(start.size());
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return std::nullopt;
}

}  // namespace

std::string prettyName(std::string_view osRelease) {
  const auto value = lineAfter(osRelease, "PRETTY_NAME=");
  return value ? cleaned(unquoted(*value)) : std::string();
}

std::optional<std::string> productName(std::string_view text) {
  constexpr std::array<std::string_view, 7> placeholders{
      "",    "To Be Filled By O.E.M.", "System Product Name", "Default string", "Not Specified", "Unknown",
      "None"};
  auto name = cleaned(text);
  if (std::ranges::find(placeholders, name) != placeholders.end()) return std::nullopt;
  return name;
}

std::optional<std::string> processorModel(std::string_view cpuInfo) {
  const auto rest = lineAfter(cpuInfo, "model name");
  if (!rest || rest->find(':') == std::string_view::npos) return std::nullopt;
  return productName(rest->substr(rest->find(':') + 1));
}

ports::SystemVersion SystemDescription::systemVersion() {
  utsname kernel{};
  uname(&kernel);
  auto text = readSmallFile(root_ + "/etc/os-release");
  if (!text) text = readSmallFile(root_ + "/usr/lib/os-release");
  return {.name = text ? prettyName(*text) : std::string(), .release = kernel.release};
}

std::optional<std::string> SystemDescription::hardwareModel() {
  for (const char* path : {"/sys/class/dmi/id/product_name", "/sys/firmware/devicetree/base/model"}) {
    const auto text = readSmallFile(root_ + path);
    if (auto name = text ? productName(*text) : std::nullopt) return name;
  }
  const auto cpuInfo = readSmallFile(root_ + "/proc/cpuinfo");
  return cpuInfo ? processorModel(*cpuInfo) : std::nullopt;
}

}  // namespace vorli::linuxhost

#include "diagnostics/CrashReportText.h"

#include "base/ISOTimestamp.h"
#include "base/UnicodeText.h"
#include "diagnostics/SHA256.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vorli {

namespace {

constexpr std::size_t signatureFrames = 3;
constexpr std::size_t signatureBytes = 8;

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (true) {
    const auto lineFeed = text.find('\n');
    lines.push_back(text.substr(0, lineFeed));
    if (lineFeed == std::string_view::npos) return lines;
    text.remove_prefix(lineFeed + 1);
  }
}

bool isEmptyOrRule(std::string_view line) {
  return trimmed(line).find_first_not_of('-') == std::string_view::npos;
}

bool endsStackTrace(std::string_view line) {
  const auto text = trimmed(line);
  return text.ends_with("activity (last 100 log lines)") || text.starts_with("Recent activity");
}

}  // namespace

std::optional<std::string_view> sectionValue(std::string_view report, std::string_view heading) {
  const auto lines = splitLines(report);
  const auto section = std::ranges::find(lines, heading, trimmed);
  if (section != lines.end()) {
    const auto value = std::find_if_not(section + 1, lines.end(), isEmptyOrRule);
    if (value == lines.end()) return std::nullopt;
    return trimmed(*value);
  }
  const std::string start = std::string(heading) + ":";
  for (const auto line : lines) {
    if (line.starts_with(start)) return trimmed(line.substr(start.size()));
  }
  return std::nullopt;
}

std::vector<std::string_view> stackFrames(std::string_view report) {
  constexpr std::string_view heading = "Stack trace";
  const auto found = report.find(heading);
  if (found == std::string_view::npos) return {};
  const auto lines = splitLines(report.substr(found + heading.size()));
  const auto first = std::ranges::find_if_not(lines, isEmptyOrRule);
  return {first, std::find_if(first, lines.end(), endsStackTrace)};
}

std::string crashSignature(std::string_view report) {
  auto frames = stackFrames(report);
  frames.resize(std::min(frames.size(), signatureFrames));
  std::string joined;
  for (const auto frame : frames) {
    if (frame.data() != frames.front().data()) joined += '|';
    joined += frame;
  }
  constexpr std::string_view digits = "0123456789abcdef";
  std::string signature;
  const auto digest = sha256(joined);
  for (const std::uint8_t byte : std::span(digest).first(signatureBytes)) {
    signature += digits[byte >> 4];
    signature += digits[byte & 0x0F];
  }
  return signature;
}

std::optional<Date> dateFromFileName(std::string_view fileName) {
  std::string name(fileName.substr(0, fileName.rfind('.')));
  const auto mark = name.find('T');
  if (mark == std::string::npos) return std::nullopt;
  std::replace(name.begin() + static_cast<std::ptrdiff_t>(mark), name.end(), '-', ':');
  return parseISOTimestamp(name);
}

}  // namespace vorli

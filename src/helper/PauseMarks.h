#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::helper {

/// Session managers start every file of an autostart folder, whatever its name ends in; only `Hidden=true`
/// keeps them from it. So a desktop entry that is put away gets a block of lines right behind its group
/// header, and loses exactly those when it comes back.
namespace pause_marks {

inline constexpr std::string_view group = "[Desktop Entry]";
inline constexpr std::string_view block = "Hidden=true\nX-Vorli-Paused=true\n";
/// Follows the block: when the original was made, in seconds since 1970, which the rewriting would lose.
inline constexpr std::string_view firstSeenKey = "X-Vorli-FirstSeen=";
/// Stands before a `Hidden` line of the original's own: the last one of a group counts, so it must not.
inline constexpr std::string_view keptPrefix = "#X-Vorli-Kept:";

/// Takes the first line, its end included, off `rest`.
constexpr std::string_view takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  const auto line = rest.substr(0, end == std::string_view::npos ? end : end + 1);
  rest.remove_prefix(line.size());
  return line;
}

constexpr std::string_view trimmed(std::string_view line) {
  constexpr std::string_view blanks = " \t\r\n";
  while (!line.empty() && blanks.contains(line.front())) line.remove_prefix(1);
  while (!line.empty() && blanks.contains(line.back())) line.remove_suffix(1);
  return line;
}

constexpr bool setsHidden(std::string_view line) {
  line = trimmed(line);
  if (!line.starts_with("Hidden")) return false;
  return trimmed(line.substr(6)).starts_with('=');
}

/// Where the first line behind the group header begins; nothing without a header line.
constexpr std::optional<std::size_t> bodyOffset(std::string_view content) {
  auto rest = content;
  while (!rest.empty()) {
    const auto line = takeLine(rest);
    if (line.ends_with('\n') && trimmed(line) == group) return content.size() - rest.size();
  }
  return std::nullopt;
}

}  // namespace pause_marks

/// True when the entry bears the marks.
constexpr bool hasPauseMarks(std::string_view content) {
  const auto body = pause_marks::bodyOffset(content);
  return body && content.substr(*body).starts_with(pause_marks::block);
}

/// The entry with the marks. Nothing when it has them already, or is no desktop entry that could start.
inline std::optional<std::string> withPauseMarks(std::string_view content,
                                                 std::optional<std::int64_t> firstSeen) {
  const auto body = pause_marks::bodyOffset(content);
  if (!body || hasPauseMarks(content)) return std::nullopt;

  std::string result(content.substr(0, *body));
  result += pause_marks::block;
  if (firstSeen) result += std::string(pause_marks::firstSeenKey) + std::to_string(*firstSeen) + "\n";
  auto rest = content.substr(*body);
  while (!rest.empty() && !pause_marks::trimmed(rest).starts_with('[')) {
    const auto line = pause_marks::takeLine(rest);
    if (pause_marks::setsHidden(line)) result += pause_marks::keptPrefix;
    result += line;
  }
  return result += rest;
}

/// The entry as it was before. Nothing when it bears no marks.
inline std::optional<std::string> withoutPauseMarks(std::string_view content) {
  if (!hasPauseMarks(content)) return std::nullopt;

  const auto body = *pause_marks::bodyOffset(content);
  std::string result(content.substr(0, body));
  auto rest = content.substr(body + pause_marks::block.size());
  if (rest.starts_with(pause_marks::firstSeenKey)) pause_marks::takeLine(rest);
  while (!rest.empty() && !pause_marks::trimmed(rest).starts_with('[')) {
    auto line = pause_marks::takeLine(rest);
    if (line.starts_with(pause_marks::keptPrefix)) line.remove_prefix(pause_marks::keptPrefix.size());
    result += line;
  }
  return result += rest;
}

}  // namespace vorli::helper

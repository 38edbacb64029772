#pragma once

#include "base/Blanks.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {

/// Session managers start every file of an autostart folder, whatever its name ends in; only `Hidden=true`
/// prevents that. So a disabled desktop entry gets a block of lines right after its group header, and
/// enabling it removes exactly those lines.
namespace pause_marks {

inline constexpr std::string_view group = "[Desktop Entry]";
inline constexpr std::string_view block = "Hidden=true\nX-Vorli-Paused=true\n";
/// Begins the line after the block, which holds the creation time of the original in seconds since 1970:
/// rewriting the file loses that time. The line has no value when the time is unknown and the original itself
/// begins with such a line.
inline constexpr std::string_view firstSeenKey = "X-Vorli-FirstSeen=";
/// Prefix that disables the original's own `Hidden` lines, because the last one counts. Lines that already
/// begin with it get it again.
inline constexpr std::string_view keptPrefix = "#X-Vorli-Kept:";

/// Removes the first line and its end from `rest`, and returns it.
constexpr std::string_view takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  const auto line = rest.substr(0, end == std::string_view::npos ? end : end + 1);
  rest.remove_prefix(line.size());
  return line;
}

constexpr bool setsHidden(std::string_view line) {
  line = withoutBlanks(line);
  if (!line.starts_with("Hidden")) return false;
  return withoutBlanks(line.substr(6)).starts_with('=');
}

/// Returns where the first line after the group header begins; empty without a header line.
constexpr std::optional<std::size_t> bodyOffset(std::string_view content) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";  // sessions skip it
  auto rest = content;
  if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
  while (!rest.empty()) {
    const auto line = takeLine(rest);
    if (line.ends_with('\n') && withoutBlanks(line) == group) return content.size() - rest.size();
  }
  return std::nullopt;
}

/// Calls `take` with each line of `body`, which begins after the group header, and with whether the line
/// belongs to the group: sessions add up all groups of that name.
template <typename Take>
void forEachLine(std::string_view body, Take take) {
  bool inGroup = true;
  while (!body.empty()) {
    const auto line = takeLine(body);
    const auto text = withoutBlanks(line);
    if (text.starts_with('[')) inGroup = text == group;
    take(line, inGroup);
  }
}

}  // namespace pause_marks

/// True when the entry has the marks.
constexpr bool hasPauseMarks(std::string_view content) {
  const auto body = pause_marks::bodyOffset(content);
  return body && content.substr(*body).starts_with(pause_marks::block);
}

/// Returns the entry with the marks. Empty when it has them already, or is not a desktop entry that could
/// start.
inline std::optional<std::string> withPauseMarks(std::string_view content,
                                                 std::optional<std::int64_t> firstSeen) {
  const auto body = pause_marks::bodyOffset(content);
  if (!body || hasPauseMarks(content)) return std::nullopt;

  std::string result(content.substr(0, *body));
  result += pause_marks::block;
  const auto rest = content.substr(*body);
  if (firstSeen || rest.starts_with(pause_marks::firstSeenKey)) {
    result += pause_marks::firstSeenKey;
    if (firstSeen) result += std::to_string(*firstSeen);
    result += "\n";
  }
  pause_marks::forEachLine(rest, [&result](std::string_view line, bool inGroup) {
    if (inGroup && (pause_marks::setsHidden(line) || line.starts_with(pause_marks::keptPrefix)))
      result += pause_marks::keptPrefix;
    result += line;
  });
  return result;
}

/// Returns the original entry. Empty when it has no marks.
inline std::optional<std::string> withoutPauseMarks(std::string_view content) {
  if (!hasPauseMarks(content)) return std::nullopt;

  const auto body = *pause_marks::bodyOffset(content);
  std::string result(content.substr(0, body));
  auto rest = content.substr(body + pause_marks::block.size());
  if (rest.starts_with(pause_marks::firstSeenKey)) pause_marks::takeLine(rest);
  pause_marks::forEachLine(rest, [&result](std::string_view line, bool inGroup) {
    if (inGroup && line.starts_with(pause_marks::keptPrefix))
      line.remove_prefix(pause_marks::keptPrefix.size());
    result += line;
  });
  return result;
}

}  // namespace vorli::formats

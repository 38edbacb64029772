#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// One line of a desktop entry, as views into it. Only the group is set for a group's header; nothing is set
/// for a comment or a line without an equals sign.
struct DesktopLine {
  std::string_view group;  // with its brackets
  std::string_view key;    // with its language, as in "Name[de]"
  std::string_view value;  // with its escapes

  bool operator==(const DesktopLine&) const = default;
};

/// Header of the group that describes the entry.
inline constexpr std::string_view desktopEntryGroup = "[Desktop Entry]";

/// Splits a line. Blanks and carriage returns around it, its key and its value are left out.
DesktopLine splitDesktopLine(std::string_view line);

/// Returns a value as a text: escapes such as \s are undone. An escape that texts do not have is kept for the
/// quoting of Exec.
std::string desktopText(std::string_view value);

/// Returns a value as a list: its texts end at semicolons that are not escaped. Empty texts are left out.
std::vector<std::string> desktopList(std::string_view value);

}  // namespace vorli::formats

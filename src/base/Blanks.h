#pragma once

#include <string_view>

namespace vorli {

/// Removes blanks and line ends of ASCII from both ends. `trimmed` in UnicodeText.h knows typographic spaces
/// too.
constexpr std::string_view withoutBlanks(std::string_view text, std::string_view blanks = " \t\r\n") {
  while (!text.empty() && blanks.contains(text.front())) text.remove_prefix(1);
  while (!text.empty() && blanks.contains(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace vorli

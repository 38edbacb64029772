#pragma once

#include <string>
#include <string_view>

namespace vorli {

// Letters are matched one to one, for the Latin, Greek, Cyrillic and Armenian scripts; a letter without such
// a counterpart is unchanged. So are bytes that are not UTF-8.

std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// Converts the first character to upper case if it is a lower-case letter.
std::string capitalizingFirst(std::string_view text);

/// Converts the first letter of each word to upper case and all others to lower case. A word begins after any
/// character that is not a letter, an apostrophe or a dot.
std::string capitalized(std::string_view text);

/// Removes white space from both ends, including line breaks and typographic spaces.
std::string_view trimmed(std::string_view text);

}  // namespace vorli

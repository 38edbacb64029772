#pragma once

#include <string>
#include <string_view>

namespace vorli {

// Letters are matched one to one, for the Latin, Greek, Cyrillic and Armenian scripts; a letter without such
// a partner stays as it is. Bytes that are no UTF-8 stay as they are.

std::string lowercased(std::string_view text);

/// The text with its first character in upper case when that is a lower-case letter.
std::string capitalizingFirst(std::string_view text);

/// The text without the white space at both ends, line breaks and the wide spaces of typesetting included.
std::string_view trimmed(std::string_view text);

}  // namespace vorli

#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// U+FFFD, which stands where bytes could not be read as text.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

bool isASCII(std::string_view bytes);

/// True for well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isUTF8(std::string_view bytes);

/// The text with each ill-formed piece replaced by U+FFFD; a piece is the longest start of a character that
/// could still have become well-formed, or one byte.
std::string repairedUTF8(std::string_view bytes);

}  // namespace vorli

#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// U+FFFD, which replaces bytes that are not valid text.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

bool isASCII(std::string_view bytes);

/// True for well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isUTF8(std::string_view bytes);

/// Replaces each ill-formed piece with U+FFFD. A piece is the longest prefix of a well-formed character, or
/// one byte.
std::string repairedUTF8(std::string_view bytes);

/// Appends one character; U+FFFD for a surrogate or anything above U+10FFFF.
void appendUTF8(std::string& text, char32_t character);

}  // namespace vorli

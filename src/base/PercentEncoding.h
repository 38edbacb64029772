#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// Characters, besides letters and digits, that need no encoding in the host of a link.
inline constexpr std::string_view hostPunctuation = "!$&'()*+,-.:;=[]_~";

/// Encodes each byte that is not an ASCII letter, a digit or in `allowedPunctuation` as a percent sign and
/// two upper-case hex digits.
std::string percentEncoded(std::string_view text, std::string_view allowedPunctuation);

}  // namespace vorli

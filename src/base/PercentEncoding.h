#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// What stands as it is in the host of a link, letters and digits apart.
inline constexpr std::string_view hostPunctuation = "!$&'()*+,-.:;=[]_~";

/// The text with each byte that is neither an ASCII letter, a digit nor one of `allowedPunctuation` written
/// as a percent sign and two upper-case hex digits.
std::string percentEncoded(std::string_view text, std::string_view allowedPunctuation);

}  // namespace vorli

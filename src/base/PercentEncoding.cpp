#include "base/PercentEncoding.h"

namespace vorli {

std::string percentEncoded(std::string_view text, std::string_view allowedPunctuation) {
  constexpr std::string_view hexDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (isPlain || allowedPunctuation.contains(c)) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += {'%', hexDigits[byte >> 4], hexDigits[byte & 0xF]};
    }
  }
  return encoded;
}

}  // namespace vorli

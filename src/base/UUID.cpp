#include "base/UUID.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>

namespace vorli {

std::string newUUID() {
  static std::random_device source;
  std::array<std::uint8_t, 16> bytes;
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(source());
  bytes[6] = static_cast<std::uint8_t>(0x40 | (bytes[6] & 0x0F));  // version 4: random
  bytes[8] = static_cast<std::uint8_t>(0x80 | (bytes[8] & 0x3F));  // the usual variant

  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits[bytes[i] >> 4];
    text += digits[bytes[i] & 0x0F];
  }
  return text;
}

}  // namespace vorli

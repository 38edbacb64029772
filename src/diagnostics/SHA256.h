#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vorli {

using SHA256Digest = std::array<std::uint8_t, 32>;

/// Returns the SHA-256 digest of the bytes, as defined by FIPS 180-4.
SHA256Digest sha256(std::string_view bytes);

}  // namespace vorli

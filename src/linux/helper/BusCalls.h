#pragma once

#include <cstdint>
#include <limits>

namespace vorli::linuxhost {

/// Path of the daemon's object on the system bus.
inline constexpr const char* helperPath = "/com/kv/vorli/helper";

// Time limits of one call.
inline constexpr std::uint64_t shortLimitMicroseconds = 2'000'000;
inline constexpr std::uint64_t noLimit = std::numeric_limits<std::uint64_t>::max();

}  // namespace vorli::linuxhost

#pragma once

#include <cstdint>

/// Values of HelperReply::exitCode that stand for the daemon's own decisions. Values from 2 to 199 are errno
/// values from the kernel.
namespace vorli::helper::exit_code {

inline constexpr std::int32_t done = 0;
inline constexpr std::int32_t refused = 1;
inline constexpr std::int32_t notAuthorised = 200;
inline constexpr std::int32_t authenticationNeeded = 201;
inline constexpr std::int32_t busy = 202;
inline constexpr std::int32_t notSupported = 203;
inline constexpr std::int32_t internalError = 204;

}  // namespace vorli::helper::exit_code

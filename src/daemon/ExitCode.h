#pragma once

#include "contract/HelperProtocol.h"

#include <cstdint>
#include <string>

namespace vorli::daemon {

/// Codes of the daemon's own decisions. Values from 2 to 199 are errno values from the kernel.
namespace exit_code {
inline constexpr std::int32_t done = 0;
inline constexpr std::int32_t refused = 1;
inline constexpr std::int32_t notAuthorised = 200;
inline constexpr std::int32_t authenticationNeeded = 201;
inline constexpr std::int32_t busy = 202;
inline constexpr std::int32_t notSupported = 203;
inline constexpr std::int32_t internalError = 204;
}  // namespace exit_code

/// A failed operation of the system: an errno value and its text.
struct SystemError {
  std::int32_t code;
  std::string text;

  bool operator==(const SystemError&) const = default;
};

inline HelperReply toReply(const SystemError& error) {
  return {error.code, error.text};
}

}  // namespace vorli::daemon

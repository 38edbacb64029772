#pragma once

#include "contract/ExitCode.h"
#include "contract/HelperProtocol.h"

#include <cerrno>
#include <cstdint>
#include <expected>
#include <string>
#include <system_error>
#include <utility>

namespace vorli::daemon {

/// A failed operation of the system: an errno value and its text.
struct SystemError {
  std::int32_t code;
  std::string text;

  bool operator==(const SystemError&) const = default;
};

inline HelperReply toReply(const SystemError& error) {
  return {error.code, error.text};
}

/// An error code of the kernel with its text. Thread-safe, unlike strerror.
inline SystemError systemError(int code) {
  return {code, std::generic_category().message(code)};
}

inline std::unexpected<SystemError> lastError() {
  return std::unexpected(systemError(errno));
}

/// The error of a request that the daemon does not fulfil; `text` says why.
inline std::unexpected<SystemError> refused(std::string text) {
  return std::unexpected(SystemError{helper::exit_code::refused, std::move(text)});
}

}  // namespace vorli::daemon

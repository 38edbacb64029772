#pragma once

#include "daemon/ExitCode.h"

#include <cerrno>
#include <expected>
#include <string>
#include <system_error>
#include <utility>

namespace vorli::daemon {

/// An error code of the kernel with its text. Thread-safe, unlike strerror.
inline SystemError systemError(int code) {
  return {code, std::generic_category().message(code)};
}

inline std::unexpected<SystemError> lastError() {
  return std::unexpected(systemError(errno));
}

/// The error of a request that the daemon does not fulfil; `text` says why.
inline std::unexpected<SystemError> refused(std::string text) {
  return std::unexpected(SystemError{exit_code::refused, std::move(text)});
}

}  // namespace vorli::daemon

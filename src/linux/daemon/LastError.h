#pragma once

#include "daemon/ExitCode.h"

#include <cerrno>
#include <expected>
#include <system_error>

namespace vorli::linuxhost {

/// `code` of the kernel's, with the kernel's words. Unlike strerror, for any thread.
inline daemon::SystemError systemError(int code) {
  return {code, std::generic_category().message(code)};
}

inline std::unexpected<daemon::SystemError> lastError() {
  return std::unexpected(systemError(errno));
}

}  // namespace vorli::linuxhost

#pragma once

#include "daemon/SystemError.h"
#include "posix/FileDescriptor.h"

#include <expected>

namespace vorli::linuxhost {

/// Gives `to` exactly the extended attributes of `from`, including its access control list. Neither
/// descriptor may be opened with O_PATH. Attributes of the namespace "trusted" are not copied: seeing them
/// takes a capability that the daemon does not have. Error 1: an attribute could not be kept.
[[nodiscard]] std::expected<void, daemon::SystemError> copyAttributes(const posix::FileDescriptor& from,
                                                                      const posix::FileDescriptor& to);

}  // namespace vorli::linuxhost

#pragma once

#include "daemon/Callers.h"
#include "posix/FileDescriptor.h"

#include <cstdint>
#include <memory>

namespace vorli::linuxhost {

/// Holds process `pid` if all its user ids are `user` and it is in no other user's session; otherwise null.
/// `handle` is the bus's own handle of the process that connected. Without one, whichever process has the
/// number now is held and checked.
std::shared_ptr<daemon::CallerProcess> holdCaller(std::int32_t pid, posix::FileDescriptor handle,
                                                  daemon::UserId user);

}  // namespace vorli::linuxhost

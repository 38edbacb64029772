#pragma once

#include "posix/FileSystemCalls.h"

namespace vorli::linuxhost {

posix::FileSystemCalls fileSystemCalls();

}  // namespace vorli::linuxhost

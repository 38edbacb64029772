#pragma once

#include "posix/FileSystemCalls.h"

namespace vorli::machost {

posix::FileSystemCalls fileSystemCalls();

}  // namespace vorli::machost

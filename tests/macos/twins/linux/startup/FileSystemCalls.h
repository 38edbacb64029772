#pragma once

// Lets tests of the Linux back end run on this one: the promises are the same.

#include "macos/startup/FileSystemCalls.h"

namespace vorli::linuxhost {

using machost::fileSystemCalls;

}  // namespace vorli::linuxhost

#pragma once

#include <sys/types.h>

namespace vorli::posix {

// Nobody but the user may read what the program stores.
inline constexpr mode_t folderMode = 0700;
inline constexpr mode_t fileMode = 0600;

}  // namespace vorli::posix

#pragma once

#include "ports/SystemStartupLists.h"

#include <string>
#include <vector>

namespace vorli::machost {

/// Reads the store of background items with the system's unarchiver. Its bookmarks are resolved by the
/// system, which mounts nothing and does not ask the user; containers without any file are left out. Empty
/// when the store cannot be read or is of another format. Any thread; blocks to read the file and to resolve.
std::vector<ports::BackgroundContainer> readBackgroundStore(const std::string& path);

}  // namespace vorli::machost

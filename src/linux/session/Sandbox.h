#pragma once

#include <string>

namespace vorli::linuxhost {

/// True when this program runs in a sandbox of the desktop, where only portals reach the user. `program` is
/// its absolute path; `root` is the prefix of every other path.
bool isSandboxed(const std::string& program, const std::string& root = {});

}  // namespace vorli::linuxhost

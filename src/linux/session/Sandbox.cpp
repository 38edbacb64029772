#include "linux/session/Sandbox.h"

#include "posix/Environment.h"

#include <unistd.h>

namespace vorli::linuxhost {

bool isSandboxed(const std::string& program, const std::string& root) {
  if (access((root + "/.flatpak-info").c_str(), F_OK) == 0) return true;
  // Programs that a snap starts inherit its variables, but do not lie in its folder.
  const auto snap = posix::environmentVariable("SNAP");
  return !snap.empty() && program.starts_with(snap + "/");
}

}  // namespace vorli::linuxhost

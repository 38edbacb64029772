#include "linux/daemon/Narrowing.h"

#include "contract/SystemStartupFolders.h"
#include "daemon/SystemError.h"
#include "posix/FileDescriptor.h"

#include <cstdint>
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/landlock.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace vorli::linuxhost {

namespace {

constexpr rlim_t mostFiles = 128;

// This function and `limit` skip what the service manager has already restricted, because it also forbids the
// calls that restrict. The bounding set is reduced first: that needs a capability that the second step gives
// up.
bool keepOnlyKillCapability() {
  for (int capability = 0;; ++capability) {
    const int isHeld = ::prctl(PR_CAPBSET_READ, capability, 0, 0, 0);
    if (isHeld < 0) break;  // past the last capability
    if (isHeld == 0 || capability == CAP_KILL) continue;
    if (::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0) return false;
  }
  constexpr std::uint32_t kept = 1u << CAP_KILL;
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct sets[2]{};
  if (::syscall(SYS_capget, &header, sets) != 0) return false;
  if ((sets[0].permitted & ~kept) == 0 && sets[0].inheritable == 0 && sets[1].permitted == 0) return true;

  sets[0] = {.effective = kept, .permitted = kept, .inheritable = 0};
  sets[1] = {};
  return ::syscall(SYS_capset, &header, sets) == 0;
}

bool limit(__rlimit_resource resource, rlim_t most) {
  rlimit current{};
  if (::getrlimit(resource, &current) == 0 && current.rlim_max <= most) return true;
  const rlimit wanted{most, most};
  return ::setrlimit(resource, &wanted) == 0;
}

void allowBeneath(int rules, const std::string& path, std::uint64_t access) {
  const posix::FileDescriptor place(::open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!place) return;
  landlock_path_beneath_attr rule{access, place.get()};
  ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

// Best effort: older kernels do not support it, and the service manager adds its own restrictions.
void confineWriting() {
  constexpr std::uint64_t changes = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                    LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                    LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                    LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                    LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
  landlock_ruleset_attr attributes{};
  attributes.handled_access_fs = changes;
  const posix::FileDescriptor rules(static_cast<int>(
      ::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes.handled_access_fs, 0)));
  if (!rules) return;

  for (const auto& folder : helper::systemStartupFolders)
    allowBeneath(
        rules.get(), std::string(folder.path),
        LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_REG);
  ::syscall(SYS_landlock_restrict_self, rules.get(), 0);
}

}  // namespace

std::expected<void, daemon::SystemError> narrowProcess() {
  ::umask(077);
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return daemon::lastError();
  confineWriting();
  if (!keepOnlyKillCapability() || !limit(RLIMIT_CORE, 0) || !limit(RLIMIT_NOFILE, mostFiles))
    return daemon::lastError();
  return {};
}

}  // namespace vorli::linuxhost

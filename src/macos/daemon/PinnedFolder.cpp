#include "macos/daemon/PinnedFolder.h"

#include "daemon/SystemError.h"

#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/acl.h>
#include <unistd.h>

namespace vorli::machost {

namespace {

using posix::FileDescriptor;
using posix::RootFolder;

// True when an access control list may allow what the mode forbids. Lists that only deny, which the system
// puts on its own folders, do not count.
bool hasGrants(const FileDescriptor& folder) {
  const std::unique_ptr<void, int (*)(void*)> list(acl_get_fd_np(folder.get(), ACL_TYPE_EXTENDED), acl_free);
  if (!list) return errno != ENOENT;  // this error means that there is no list
  acl_entry_t entry = nullptr;
  for (int next = ACL_FIRST_ENTRY; acl_get_entry(static_cast<acl_t>(list.get()), next, &entry) == 0;
       next = ACL_NEXT_ENTRY) {
    acl_tag_t tag = ACL_UNDEFINED_TAG;
    if (acl_get_tag_type(entry, &tag) != 0 || tag != ACL_EXTENDED_DENY) return true;
  }
  return false;
}

int renameWithoutReplacing(int folder, const char* from, const char* to) {
  return ::renameatx_np(folder, from, folder, to, RENAME_EXCL);
}

}  // namespace

Attempt<PinnedFolder> PinnedFolder::open(const std::string& path) {
  auto folder = RootFolder::open(path, hasGrants);
  if (!folder) return std::unexpected(folder.error());
  return PinnedFolder(std::move(*folder));
}

// Checks the file before opening it, because opening a device can have an effect.
Attempt<PinnedItem> PinnedFolder::pin(const std::string& name) const {
  struct stat seen {};
  if (::fstatat(folder_.descriptor(), name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0)
    return daemon::lastError();
  if (!RootFolder::isPlainFileOfRoot(seen)) return daemon::refused("Not a plain file of root's");
  constexpr int flags = O_EVTONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  PinnedItem item{FileDescriptor(::openat(folder_.descriptor(), name.c_str(), flags)), {}};
  if (!item.file || ::fstat(item.file.get(), &item.status) != 0) return daemon::lastError();
  if (!RootFolder::isPlainFileOfRoot(item.status)) return daemon::refused("Not a plain file of root's");
  return item;
}

Attempt<void> PinnedFolder::rename(const std::string& from, const std::string& to,
                                   const PinnedItem& item) const {
  return folder_.rename(from, to, item, renameWithoutReplacing);
}

}  // namespace vorli::machost

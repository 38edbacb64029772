#include "posix/daemon/RootFolder.h"

#include "daemon/SystemError.h"

#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace vorli::posix {

// Opens one path component at a time and never follows a link. openat2 of Linux would do it in one call, but
// RestrictSUIDSGID= blocks it.
Attempt<RootFolder> RootFolder::open(const std::string& path, HasGrants hasGrants) {
  constexpr mode_t writableByOthers = 022;
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor folder(::open("/", flags));
  if (!folder) return daemon::lastError();
  for (std::string_view rest = path; !rest.empty();) {
    rest.remove_prefix(1);  // the slash
    const std::string name(rest.substr(0, rest.find('/')));
    rest.remove_prefix(name.size());
    folder = FileDescriptor(::openat(folder.get(), name.c_str(), flags));
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0) return daemon::lastError();
    if (status.st_uid != 0 || (status.st_mode & writableByOthers) != 0 || hasGrants(folder))
      return daemon::refused("Others than root can change the folder");
  }
  return RootFolder(std::move(folder));
}

bool RootFolder::isPlainFileOfRoot(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_uid == 0 && status.st_nlink == 1;
}

bool RootFolder::bears(const std::string& name, const PinnedItem& item) const {
  struct stat status {};
  return ::fstatat(folder_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         status.st_dev == item.status.st_dev && status.st_ino == item.status.st_ino;
}

Attempt<void> RootFolder::rename(const std::string& from, const std::string& to, const PinnedItem& item,
                                 Rename call) const {
  if (call(folder_.get(), from.c_str(), to.c_str()) != 0) return daemon::lastError();
  if (bears(to, item)) return {};
  call(folder_.get(), to.c_str(), from.c_str());
  return daemon::refused("The file was changed for another meanwhile");
}

Attempt<void> RootFolder::flush() const {
  if (::fsync(folder_.get()) != 0) return daemon::lastError();
  return {};
}

}  // namespace vorli::posix

#include "tests/macos/runtime/Files.h"

#include "tests/macos/runtime/State.h"

#include <cerrno>
#include <copyfile.h>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/acl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

#undef stat
#undef lstat
#undef fstat
#undef fstatat

namespace vorli::macfake {

static State<Files> filesState;
static State<Signals> signalsState;

Files& files() {
  return *filesState;
}

Signals& signals() {
  return *signalsState;
}

namespace {

// The part of the kernel's record that is used here.
int birthOf(int folder, const char* path, int flags, timespec& birth) {
  struct statx facts {};
  if (::statx(folder, path, flags | AT_EMPTY_PATH, STATX_BTIME, &facts) != 0) return -1;
  if ((facts.stx_mask & STATX_BTIME) != 0) birth = {facts.stx_btime.tv_sec, facts.stx_btime.tv_nsec};
  return 0;
}

int complete(int folder, const char* path, int flags, struct vorli_stat* status) {
  if (birthOf(folder, path, flags, status->st_birthtimespec) != 0) return -1;
  const auto own = files().flags.find(status->st_ino);
  status->st_flags = own == files().flags.end() ? 0 : own->second;
  if (files().trusted.contains(status->st_ino)) {
    status->st_uid = 0;
    status->st_mode &= ~mode_t{022};
  }
  return 0;
}

unsigned kernelFlags(unsigned flags) {
  constexpr unsigned noReplace = 1, exchange = 2;
  return flags == RENAME_SWAP ? exchange : noReplace;
}

bool copyAttributes(int from, int to) {
  char names[1024];
  const ssize_t size = flistxattr(from, names, sizeof names);
  for (const char* name = names; size > 0 && name < names + size; name += std::strlen(name) + 1) {
    char value[1024];
    const ssize_t length = fgetxattr(from, name, value, sizeof value);
    if (length < 0 || fsetxattr(to, name, value, static_cast<std::size_t>(length), 0) != 0) return false;
  }
  return true;
}

}  // namespace
}  // namespace vorli::macfake

using namespace vorli::macfake;

extern "C" {

int vorli_stat(const char* path, struct vorli_stat* status) {
  return ::stat(path, status) == 0 ? complete(AT_FDCWD, path, 0, status) : -1;
}

int vorli_lstat(const char* path, struct vorli_stat* status) {
  return ::lstat(path, status) == 0 ? complete(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, status) : -1;
}

int vorli_fstat(int file, struct vorli_stat* status) {
  return ::fstat(file, status) == 0 ? complete(file, "", 0, status) : -1;
}

int vorli_fstatat(int folder, const char* path, struct vorli_stat* status, int flags) {
  return ::fstatat(folder, path, status, flags) == 0 ? complete(folder, path, flags, status) : -1;
}

int renamex_np(const char* from, const char* to, unsigned flags) {
  return renameatx_np(AT_FDCWD, from, AT_FDCWD, to, flags);
}

int renameatx_np(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  if (!files().canSwap) {
    errno = ENOTSUP;
    return -1;
  }
  const auto result = syscall(SYS_renameat2, fromFolder, from, toFolder, to, kernelFlags(flags));
  if (const auto after = std::exchange(files().afterRename, nullptr)) after();
  return static_cast<int>(result);
}

int fcopyfile(int from, int to, copyfile_state_t, copyfile_flags_t flags) {
  struct vorli_stat status {};
  struct vorli_stat made {};
  if (flags != COPYFILE_METADATA || vorli_fstat(from, &status) != 0 || vorli_fstat(to, &made) != 0) return -1;
  static_cast<void>(fchown(to, status.st_uid, status.st_gid));  // skipped if it is not allowed
  if (fchmod(to, status.st_mode & 07777U) != 0 || !copyAttributes(from, to)) return -1;
  files().flags[made.st_ino] = files().keepsFlags ? status.st_flags : 0;
  return 0;
}

struct vorli_acl_entry {
  bool grants;
};
struct vorli_acl {
  std::vector<vorli_acl_entry> entries;
  std::size_t next = 0;
};

acl_t acl_get_fd_np(int file, acl_type_t) {
  struct vorli_stat status {};
  const auto list = vorli_fstat(file, &status) == 0 ? files().lists.find(status.st_ino) : files().lists.end();
  if (!files().canReadLists || list == files().lists.end()) {
    errno = files().canReadLists ? ENOENT : EIO;
    return nullptr;
  }
  auto* const copy = new vorli_acl;
  for (const bool grants : list->second) copy->entries.push_back({grants});
  return copy;
}

int acl_get_entry(acl_t list, int which, acl_entry_t* entry) {
  if (which == ACL_FIRST_ENTRY) list->next = 0;
  if (list->next == list->entries.size()) return -1;
  *entry = &list->entries[list->next++];
  return 0;
}

int acl_get_tag_type(acl_entry_t entry, acl_tag_t* tag) {
  *tag = entry->grants ? ACL_EXTENDED_ALLOW : ACL_EXTENDED_DENY;
  return 0;
}

int acl_free(void* list) {
  delete static_cast<vorli_acl*>(list);
  return 0;
}

int vorli_kill(pid_t pid, int signal) {
  signals().sent.push_back(std::to_string(signal) + " to " + std::to_string(pid));
  errno = std::exchange(signals().failure, 0);
  return errno == 0 ? 0 : -1;
}
}

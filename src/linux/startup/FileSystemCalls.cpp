#include "linux/startup/FileSystemCalls.h"

#include "posix/FileTimes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {

namespace {

using posix::FileDescriptor;
using posix::RenameResult;
using posix::RenameWay;

constexpr std::size_t largestAttribute = 64 * 1024;  // the kernel's own limit, for the list of names as well

std::vector<std::string> attributesOf(const FileDescriptor& file) {
  std::string list(largestAttribute, '\0');
  const auto size = flistxattr(file.get(), list.data(), list.size());
  std::vector<std::string> names;
  std::string_view rest(list.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  while (!rest.empty()) {
    names.emplace_back(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(names.back().size() + 1, rest.size()));
  }
  return names;
}

std::optional<std::string> attributeOf(const FileDescriptor& file, const std::string& name) {
  std::string value(largestAttribute, '\0');
  const auto size = fgetxattr(file.get(), name.c_str(), value.data(), value.size());
  if (size < 0) return std::nullopt;
  value.resize(static_cast<std::size_t>(size));
  return value;
}

bool copyAttributes(const FileDescriptor& from, const FileDescriptor& to) {
  return std::ranges::all_of(attributesOf(from), [&](const std::string& name) {
    const auto value = attributeOf(from, name);
    if (!value) return false;
    // A security module labels new files itself, and may forbid others to do so.
    return attributeOf(to, name) == value ||
           fsetxattr(to.get(), name.c_str(), value->data(), value->size(), 0) == 0;
  });
}

// The mode comes after the group, whose change clears bits of it, and after the access control list, whose
// mask is a part of it.
bool describeAs(const FileDescriptor& original, const struct stat& status, const FileDescriptor& fresh) {
  constexpr mode_t modeBits = 07777;
  struct stat made {};
  if (fstat(fresh.get(), &made) != 0 || made.st_uid != status.st_uid) return false;
  if (made.st_gid != status.st_gid && fchown(fresh.get(), static_cast<uid_t>(-1), status.st_gid) != 0)
    return false;
  const timespec times[]{status.st_atim, status.st_mtim};
  return copyAttributes(original, fresh) && fchmod(fresh.get(), status.st_mode & modeBits) == 0 &&
         futimens(fresh.get(), times) == 0 && fsync(fresh.get()) == 0;
}

std::optional<Date> birthTime(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), AT_STATX_SYNC_AS_STAT, STATX_BTIME, &status) != 0) return std::nullopt;
  // Some file systems claim to know the time and give none.
  if ((status.stx_mask & STATX_BTIME) == 0 || status.stx_btime.tv_sec == 0) return std::nullopt;
  return posix::dateOf({.tv_sec = status.stx_btime.tv_sec, .tv_nsec = status.stx_btime.tv_nsec});
}

RenameResult renameFile(const std::string& from, const std::string& to, RenameWay way) {
  const unsigned flags = way == RenameWay::swapping ? RENAME_EXCHANGE : RENAME_NOREPLACE;
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0) return RenameResult::done;
  return errno == EINVAL || errno == ENOSYS ? RenameResult::unsupported : RenameResult::failed;
}

}  // namespace

posix::FileSystemCalls fileSystemCalls() {
  return {
      .birthTime = birthTime, .rename = renameFile, .describeAs = describeAs, .keepsAccessTime = O_NOATIME};
}

}  // namespace vorli::linuxhost

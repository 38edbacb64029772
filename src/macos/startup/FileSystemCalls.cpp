#include "macos/startup/FileSystemCalls.h"

#include "posix/FileTimes.h"

#include <cerrno>
#include <copyfile.h>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace vorli::machost {

namespace {

using posix::FileDescriptor;
using posix::RenameResult;
using posix::RenameWay;

// The copy passes over an owner that it may not set, so the result is looked at.
bool describeAs(const FileDescriptor& original, const struct stat& status, const FileDescriptor& fresh) {
  if (fcopyfile(original.get(), fresh.get(), nullptr, COPYFILE_METADATA) != 0) return false;
  const timespec times[]{status.st_atimespec, status.st_mtimespec};  // reading has changed the first
  struct stat made {};
  return futimens(fresh.get(), times) == 0 && fsync(fresh.get()) == 0 && fstat(fresh.get(), &made) == 0 &&
         made.st_uid == status.st_uid && made.st_gid == status.st_gid && made.st_mode == status.st_mode &&
         made.st_flags == status.st_flags;
}

std::optional<Date> birthTime(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  // Some file systems claim to know the time and give none.
  if (status.st_birthtimespec.tv_sec <= 0) return std::nullopt;
  return posix::dateOf(status.st_birthtimespec);
}

RenameResult renameFile(const std::string& from, const std::string& to, RenameWay way) {
  const unsigned flags = way == RenameWay::swapping ? RENAME_SWAP : RENAME_EXCL;
  if (renamex_np(from.c_str(), to.c_str(), flags) == 0) return RenameResult::done;
  return errno == ENOTSUP ? RenameResult::unsupported : RenameResult::failed;
}

}  // namespace

posix::FileSystemCalls fileSystemCalls() {
  return {.birthTime = birthTime, .rename = renameFile, .describeAs = describeAs, .keepsAccessTime = 0};
}

}  // namespace vorli::machost

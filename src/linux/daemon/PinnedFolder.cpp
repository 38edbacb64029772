#include "linux/daemon/PinnedFolder.h"

#include "daemon/SystemError.h"
#include "linux/daemon/FileAttributes.h"

#include <charconv>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {

namespace {

using posix::FileDescriptor;
using posix::RootFolder;

constexpr std::size_t largestItem = 1 << 20;
constexpr mode_t modeBits = 07777;
// Temporary names also begin with a dot, so that session managers ignore them.
constexpr std::string_view temporaryEnding = ".vorli-new";

// Opens a plain file through its pinned handle, without looking up its name again.
FileDescriptor opened(const PinnedItem& item) {
  const auto handle = "/proc/self/fd/" + std::to_string(item.file.get());
  return FileDescriptor(::open(handle.c_str(), O_RDONLY | O_CLOEXEC));
}

// The mode covers access control lists: its group bits are their mask.
bool hasGrants(const FileDescriptor&) {
  return false;
}

int renameWithoutReplacing(int folder, const char* from, const char* to) {
  return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE);
}

int swapNames(int folder, const char* one, const char* other) {
  return ::renameat2(folder, one, folder, other, RENAME_EXCHANGE);
}

}  // namespace

Attempt<PinnedFolder> PinnedFolder::open(const std::string& path) {
  auto folder = RootFolder::open(path, hasGrants);
  if (!folder) return std::unexpected(folder.error());
  return PinnedFolder(std::move(*folder));
}

Attempt<PinnedItem> PinnedFolder::pin(const std::string& name) const {
  // Opens a link itself, not its target, and never the other end of a pipe or a device.
  PinnedItem item{
      FileDescriptor(::openat(folder_.descriptor(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)), {}};
  if (!item.file || ::fstat(item.file.get(), &item.status) != 0) return daemon::lastError();
  if (!RootFolder::isPlainFileOfRoot(item.status)) return daemon::refused("Not a plain file of root's");
  return item;
}

bool PinnedFolder::contains(const std::string& name) const {
  struct stat status {};
  return ::fstatat(folder_.descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool PinnedFolder::isMask(const std::string& name) const {
  struct stat status {};
  if (::fstatat(folder_.descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  if (S_ISREG(status.st_mode)) return status.st_size == 0;
  constexpr std::string_view nothing = "/dev/null";
  char target[nothing.size() + 1];
  const auto size = ::readlinkat(folder_.descriptor(), name.c_str(), target, sizeof target);
  return size > 0 && std::string_view(target, static_cast<std::size_t>(size)) == nothing;
}

Attempt<void> PinnedFolder::rename(const std::string& from, const std::string& to,
                                   const PinnedItem& item) const {
  return folder_.rename(from, to, item, renameWithoutReplacing);
}

Attempt<void> PinnedFolder::exchange(const std::string& other, const std::string& name,
                                     const PinnedItem& item) const {
  return folder_.rename(name, other, item, swapNames);
}

Attempt<void> PinnedFolder::write(const std::string& name, const std::string& content,
                                  const PinnedItem& item) const {
  const FileDescriptor file(::openat(folder_.descriptor(), name.c_str(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file) return daemon::lastError();
  auto filled = fill(file, content, item);
  if (!filled) remove(name);
  return filled;
}

Attempt<void> PinnedFolder::fill(const FileDescriptor& file, const std::string& content,
                                 const PinnedItem& item) const {
  const auto& status = item.status;
  std::string_view rest = content;
  while (!rest.empty()) {
    const auto written = ::write(file.get(), rest.data(), rest.size());
    if (written < 0) return daemon::lastError();
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  if (status.st_gid != ::getegid() && ::fchown(file.get(), static_cast<uid_t>(-1), status.st_gid) != 0)
    return daemon::refused("The file belongs to a group that the helper may not give to the rewritten one");
  const auto original = opened(item);
  if (!original) return daemon::lastError();
  if (const auto copied = copyAttributes(original, file); !copied) return copied;
  // Comes last: a change of the group clears bits of the mode, and the mask of the access control list is the
  // group part of the mode.
  const timespec times[]{status.st_atim, status.st_mtim};
  if (::fchmod(file.get(), status.st_mode & modeBits) != 0 || ::futimens(file.get(), times) != 0 ||
      ::fsync(file.get()) != 0)
    return daemon::lastError();
  return {};
}

void PinnedFolder::remove(const std::string& name) const {
  ::unlinkat(folder_.descriptor(), name.c_str(), 0);
}

std::string PinnedFolder::temporaryName(const std::string& name, const PinnedItem& item) {
  return "." + name + "." + std::to_string(item.status.st_ino) + std::string(temporaryEnding);
}

bool PinnedFolder::isOwnTemporary(const std::string& name) const {
  const auto stem = std::string_view(name).substr(0, name.size() - temporaryEnding.size());
  const auto dot = stem.rfind('.');
  if (dot == 0) return false;
  ino_t inode = 0;
  const auto* end = stem.data() + stem.size();
  const auto parsed = std::from_chars(stem.data() + dot + 1, end, inode);
  if (parsed.ec != std::errc() || parsed.ptr != end) return false;

  const auto file = pin(name);
  if (!file) return false;
  if (file->status.st_ino == inode) return true;
  const auto item = pin(std::string(stem.substr(1, dot - 1)));
  return item && item->status.st_ino == inode;
}

void PinnedFolder::sweep() const {
  const int copy = ::openat(folder_.descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : ::fdopendir(copy), ::closedir);
  if (!entries) return;
  std::vector<std::string> stray;
  while (const auto* entry = ::readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name.starts_with('.') && name.ends_with(temporaryEnding)) stray.emplace_back(name);
  }
  for (const auto& name : stray)
    if (isOwnTemporary(name)) remove(name);
}

Attempt<std::string> contentOf(const PinnedItem& item) {
  if (item.status.st_size > static_cast<off_t>(largestItem))
    return std::unexpected(daemon::systemError(EFBIG));
  const auto file = opened(item);
  if (!file) return daemon::lastError();
  std::string content;
  char block[16384];
  for (;;) {
    const auto size = ::read(file.get(), block, sizeof block);
    if (size < 0) return daemon::lastError();
    if (size == 0) return content;
    content.append(block, static_cast<std::size_t>(size));
    if (content.size() > largestItem) return std::unexpected(daemon::systemError(EFBIG));
  }
}

std::optional<std::int64_t> creationTimeOf(const PinnedItem& item) {
  struct statx status {};
  if (::statx(item.file.get(), "", AT_EMPTY_PATH, STATX_BTIME, &status) != 0) return std::nullopt;
  if ((status.stx_mask & STATX_BTIME) == 0 || status.stx_btime.tv_sec == 0) return std::nullopt;
  return status.stx_btime.tv_sec;
}

}  // namespace vorli::linuxhost

#include "linux/daemon/PinnedFolder.h"

#include "linux/daemon/LastError.h"

#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t largestItem = 1 << 20;
constexpr mode_t writableByOthers = 022;
constexpr mode_t modeBits = 07777;

std::unexpected<daemon::SystemError> refused(const char* text) {
  return std::unexpected(daemon::SystemError{daemon::exit_code::refused, text});
}

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

// Step by step and never through a link. openat2 would do it in one call, but the service manager forbids
// that call to whom it forbids to make set-user files.
Attempt<PinnedFolder> PinnedFolder::open(const std::string& path) {
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor folder(::open("/", flags));
  for (std::string_view rest = path; !rest.empty();) {
    rest.remove_prefix(1);  // the slash
    const std::string name(rest.substr(0, rest.find('/')));
    rest.remove_prefix(name.size());
    folder = FileDescriptor(::openat(folder.get(), name.c_str(), flags));
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0) return lastError();
    if (status.st_uid != 0 || (status.st_mode & writableByOthers) != 0)
      return refused("Others than root can change the folder");
  }
  return PinnedFolder(std::move(folder));
}

Attempt<PinnedItem> PinnedFolder::pin(const std::string& name) const {
  // The link itself, should it be one; never a pipe's or a device's other end.
  PinnedItem item{FileDescriptor(::openat(folder_.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)), {}};
  if (!item.file || ::fstat(item.file.get(), &item.status) != 0) return lastError();
  if (!S_ISREG(item.status.st_mode) || item.status.st_uid != 0 || item.status.st_nlink != 1)
    return refused("Not a plain file of root's");
  return item;
}

bool PinnedFolder::contains(const std::string& name) const {
  struct stat status {};
  return ::fstatat(folder_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool PinnedFolder::bears(const std::string& name, const PinnedItem& item) const {
  struct stat status {};
  return ::fstatat(folder_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         isSameFile(status, item.status);
}

Attempt<void> PinnedFolder::rename(const std::string& from, const std::string& to,
                                   const PinnedItem& item) const {
  if (::renameat2(folder_.get(), from.c_str(), folder_.get(), to.c_str(), RENAME_NOREPLACE) != 0)
    return lastError();
  if (bears(to, item)) return {};
  ::renameat2(folder_.get(), to.c_str(), folder_.get(), from.c_str(), RENAME_NOREPLACE);
  return refused("The file was changed for another meanwhile");
}

Attempt<void> PinnedFolder::exchange(const std::string& other, const std::string& name,
                                     const PinnedItem& item) const {
  if (::renameat2(folder_.get(), other.c_str(), folder_.get(), name.c_str(), RENAME_EXCHANGE) != 0)
    return lastError();
  if (bears(other, item)) return {};
  ::renameat2(folder_.get(), other.c_str(), folder_.get(), name.c_str(), RENAME_EXCHANGE);
  return refused("The file was changed for another meanwhile");
}

Attempt<void> PinnedFolder::write(const std::string& name, const std::string& content,
                                  const PinnedItem& item) const {
  const FileDescriptor file(
      ::openat(folder_.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file) return lastError();
  auto filled = fill(file, content, item);
  if (!filled) remove(name);
  return filled;
}

Attempt<void> PinnedFolder::fill(const FileDescriptor& file, const std::string& content,
                                 const PinnedItem& item) const {
  const auto& status = item.status;
  const timespec times[]{status.st_atim, status.st_mtim};
  std::string_view rest = content;
  while (!rest.empty()) {
    const auto written = ::write(file.get(), rest.data(), rest.size());
    if (written < 0) return lastError();
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  // The mode after the group, which clears bits of it.
  if (status.st_gid != ::getegid() && ::fchown(file.get(), static_cast<uid_t>(-1), status.st_gid) != 0)
    return lastError();
  if (::fchmod(file.get(), status.st_mode & modeBits) != 0 || ::futimens(file.get(), times) != 0 ||
      ::fsync(file.get()) != 0)
    return lastError();
  return {};
}

void PinnedFolder::remove(const std::string& name) const {
  ::unlinkat(folder_.get(), name.c_str(), 0);
}

void PinnedFolder::sweep(const std::string& ending) const {
  const int copy = ::openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : ::fdopendir(copy), ::closedir);
  if (!entries) return;
  std::vector<std::string> stray;
  while (const auto* entry = ::readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name.starts_with('.') && name.ends_with(ending)) stray.emplace_back(name);
  }
  for (const auto& name : stray)
    if (pin(name)) remove(name);
}

Attempt<void> PinnedFolder::flush() const {
  if (::fsync(folder_.get()) != 0) return lastError();
  return {};
}

Attempt<std::string> contentOf(const PinnedItem& item) {
  if (item.status.st_size > static_cast<off_t>(largestItem)) return std::unexpected(systemError(EFBIG));
  // A plain file, by its pinned handle: its name is not looked up again.
  const auto handle = "/proc/self/fd/" + std::to_string(item.file.get());
  const FileDescriptor file(::open(handle.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return lastError();
  std::string content;
  char block[16384];
  for (;;) {
    const auto size = ::read(file.get(), block, sizeof block);
    if (size < 0) return lastError();
    if (size == 0) return content;
    content.append(block, static_cast<std::size_t>(size));
    if (content.size() > largestItem) return std::unexpected(systemError(EFBIG));
  }
}

std::optional<std::int64_t> creationTimeOf(const PinnedItem& item) {
  struct statx status {};
  if (::statx(item.file.get(), "", AT_EMPTY_PATH, STATX_BTIME, &status) != 0) return std::nullopt;
  if ((status.stx_mask & STATX_BTIME) == 0 || status.stx_btime.tv_sec == 0) return std::nullopt;
  return status.stx_btime.tv_sec;
}

}  // namespace vorli::linuxhost

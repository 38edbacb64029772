#include "posix/Files.h"

#include "posix/FileContent.h"
#include "posix/FileDescriptor.h"
#include "posix/FileModes.h"
#include "posix/FileTimes.h"
#include "posix/Folders.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vorli::posix {

namespace {

// Systems do not agree on the name of the field.
template <typename Status>
timespec modificationTime(const Status& status) {
  if constexpr (requires { status.st_mtimespec; }) {
    return status.st_mtimespec;
  } else {
    return status.st_mtim;
  }
}

std::optional<Date> modificationDate(DIR* folder, const char* name) {
  struct stat status {};
  if (fstatat(dirfd(folder), name, &status, 0) != 0) return std::nullopt;
  return dateOf(modificationTime(status));
}

}  // namespace

bool Files::createFolder(const std::string& path) {
  makeFoldersAbove(path);
  return mkdir(path.c_str(), folderMode) == 0 || isFolder(path);
}

std::optional<std::uint64_t> Files::size(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

std::optional<std::string> Files::read(const std::string& path, std::size_t largest) {
  return readRegular(path, largest);
}

bool Files::append(const std::string& path, std::string_view bytes) {
  const auto file = openRegular(path, O_WRONLY | O_APPEND | O_CREAT);
  if (!file) return false;
  off_t added = 0;
  while (!bytes.empty()) {
    const ssize_t written = write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      takeBack(file.get(), added);
      return false;
    }
    added += written;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool Files::clear(const std::string& path) {
  const auto file = openRegular(path, O_WRONLY);
  return file && ftruncate(file.get(), 0) == 0;
}

std::expected<void, std::string> Files::move(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return {};
  return std::unexpected(std::generic_category().message(errno));
}

std::optional<std::vector<ports::FolderEntry>> Files::list(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
  if (!open) return std::nullopt;
  std::vector<ports::FolderEntry> entries;
  while (const dirent* entry = readdir(open.get())) {
    if (entry->d_name[0] == '.') continue;
    entries.push_back({entry->d_name, modificationDate(open.get(), entry->d_name)});
  }
  std::ranges::sort(entries, {}, &ports::FolderEntry::name);
  return entries;
}

}  // namespace vorli::posix

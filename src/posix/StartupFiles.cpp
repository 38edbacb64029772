#include "posix/StartupFiles.h"

#include "posix/FileContent.h"
#include "posix/FileDescriptor.h"
#include "posix/Folders.h"
#include "posix/ReplacementFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::posix {

namespace {

// Renames on a file system without support for flags: the file has both names for a moment.
ports::MoveResult moveByLinking(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) != 0)
    return errno == EEXIST ? ports::MoveResult::targetExists : ports::MoveResult::failed;
  if (unlink(from.c_str()) == 0) return ports::MoveResult::moved;
  unlink(to.c_str());
  return ports::MoveResult::failed;
}

bool writeNewFile(const std::string& path, const std::string& content) {
  constexpr mode_t readableByAll = 0644;
  const FileDescriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, readableByAll));
  return file && writeAll(file.get(), content) && fsync(file.get()) == 0;
}

}  // namespace

std::optional<std::vector<std::string>> StartupFiles::visibleNames(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  if (!entries) return std::nullopt;
  std::vector<std::string> names;
  while (const dirent* entry = readdir(entries.get())) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  std::ranges::sort(names);
  return names;
}

std::optional<std::string> StartupFiles::read(const std::string& path, std::size_t limitBytes) {
  return readRegular(path, limitBytes);
}

bool StartupFiles::exists(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

bool StartupFiles::isMissing(const std::string& path) {
  return access(path.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ELOOP);
}

std::optional<Date> StartupFiles::birthTime(const std::string& path) {
  return calls_.birthTime(path);
}

std::optional<std::string> StartupFiles::linkTarget(const std::string& path) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  if (length <= 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

ports::MoveResult StartupFiles::moveWithoutReplacing(const std::string& from, const std::string& to) {
  switch (calls_.rename(from, to, RenameWay::withoutReplacing)) {
    case RenameResult::done:
      return ports::MoveResult::moved;
    case RenameResult::unsupported:
      return moveByLinking(from, to);
    case RenameResult::failed:
      break;
  }
  if (errno == EEXIST) return ports::MoveResult::targetExists;
  struct stat status {};
  const bool isMissing = errno == ENOENT && lstat(from.c_str(), &status) != 0;
  return isMissing ? ports::MoveResult::sourceMissing : ports::MoveResult::failed;
}

bool StartupFiles::rewrite(const std::string& path, const std::string& expected, const std::string& content) {
  return replaceContent(calls_, path, expected, content);
}

bool StartupFiles::setAside(const std::string& path, const std::string& expected, const std::string& content,
                            const std::string& aside) {
  return exchangeContent(calls_, path, expected, content, aside);
}

bool StartupFiles::putBack(const std::string& path, const std::string& expected, const std::string& aside) {
  return replaceByFile(calls_, path, expected, aside);
}

bool StartupFiles::create(const std::string& path, const std::string& content) {
  makeFoldersAbove(path);
  // Begins with a dot, so that no session starts it, and is short, because `path` may be as long as it can.
  const auto temporary = path.substr(0, path.rfind('/') + 1) + ".vorli-new";
  unlink(temporary.c_str());  // left behind by a run that was killed
  if (writeNewFile(temporary, content) && moveWithoutReplacing(temporary, path) == ports::MoveResult::moved)
    return true;
  unlink(temporary.c_str());
  return false;
}

bool StartupFiles::remove(const std::string& path) {
  return unlink(path.c_str()) == 0;
}

}  // namespace vorli::posix

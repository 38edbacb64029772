#include "posix/ReplacementFile.h"

#include "posix/FileContent.h"
#include "posix/FileModes.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vorli::posix {

namespace {

bool isFileAt(const std::string& path, const struct stat& status) {
  struct stat now {};
  return lstat(path.c_str(), &now) == 0 && now.st_dev == status.st_dev && now.st_ino == status.st_ino;
}

// The file at `path` if its content is `expected`, and its status; otherwise nothing.
FileDescriptor openExpected(const FileSystemCalls& calls, const std::string& path,
                            const std::string& expected, struct stat& status) {
  const int flags = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | calls.keepsAccessTime;
  FileDescriptor file(open(path.c_str(), flags));
  const bool isExpected = file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                          contentOf(file, expected.size()) == expected;
  return isExpected ? std::move(file) : FileDescriptor();
}

// Names begin with a dot, so that no session starts a file that was left behind.
std::string temporaryName(const std::string& path) {
  const auto name = path.rfind('/') + 1;
  return path.substr(0, name) + "." + path.substr(name) + ".vorli-new";
}

// Swaps the two names, and swaps them back if the original is not the expected file any more.
bool exchange(const FileSystemCalls& calls, const std::string& fresh, const std::string& path,
              const struct stat& status) {
  switch (calls.rename(fresh, path, RenameWay::swapping)) {
    case RenameResult::done:
      if (isFileAt(fresh, status)) return true;
      calls.rename(fresh, path, RenameWay::swapping);
      return false;
    case RenameResult::unsupported:  // such a file system can only replace
      return isFileAt(path, status) && std::rename(fresh.c_str(), path.c_str()) == 0;
    case RenameResult::failed:
      break;
  }
  return false;
}

// Gives the file at `original`, which `path` has replaced, the new content as well, and puts it back: it
// alone has the creation time. Readers of `path` see the new content throughout.
void restoreOriginal(const FileSystemCalls& calls, const std::string& original, const std::string& path,
                     const struct stat& status, const std::string& content) {
  struct stat replacement {};
  const auto fresh = openExpected(calls, path, content, replacement);
  const FileDescriptor old(open(original.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY));
  if (!fresh || !old || !isFileAt(original, status) || !writeAll(old.get(), content)) return;
  const bool isSame = ftruncate(old.get(), static_cast<off_t>(content.size())) == 0 &&
                      calls.describeAs(fresh, replacement, old);
  if (isSame) exchange(calls, original, path, replacement);
}

}  // namespace

bool exchangeContent(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                     const std::string& content, const std::string& aside) {
  struct stat status {};
  const auto original = openExpected(calls, path, expected, status);
  if (!original || status.st_nlink != 1) return false;
  const FileDescriptor fresh(
      open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
  if (!fresh) return false;
  if (writeAll(fresh.get(), content) && calls.describeAs(original, status, fresh) &&
      exchange(calls, aside, path, status))
    return true;
  unlink(aside.c_str());
  return false;
}

bool replaceContent(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                    const std::string& content) {
  const auto temporary = temporaryName(path);
  unlink(temporary.c_str());  // left behind by a run that was killed
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !exchangeContent(calls, path, expected, content, temporary))
    return false;
  restoreOriginal(calls, temporary, path, status, content);
  unlink(temporary.c_str());
  return true;
}

bool replaceByFile(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                   const std::string& replacement) {
  struct stat status {};
  if (!openExpected(calls, path, expected, status) || !exchange(calls, replacement, path, status))
    return false;
  unlink(replacement.c_str());
  return true;
}

}  // namespace vorli::posix

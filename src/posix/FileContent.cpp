#include "posix/FileContent.h"

#include "posix/FileModes.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::posix {

namespace {

FileDescriptor openRegularAs(const std::string& path, int flags, struct stat& status) {
  FileDescriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, fileMode));
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  return file;
}

}  // namespace

FileDescriptor openRegular(const std::string& path, int flags) {
  struct stat status {};
  return openRegularAs(path, flags, status);
}

std::optional<std::string> readRegular(const std::string& path, std::size_t limitBytes) {
  struct stat status {};
  const auto file = openRegularAs(path, O_RDONLY, status);
  return file ? contentOf(file, limitBytes, static_cast<std::size_t>(status.st_size)) : std::nullopt;
}

// Asks for one byte more than expected, so that a file that gives no more has ended.
std::optional<std::string> contentOf(const FileDescriptor& file, std::size_t limitBytes,
                                     std::size_t expectedBytes) {
  constexpr std::size_t leastGrowth = std::size_t{16} * 1024;
  if (expectedBytes > limitBytes) return std::nullopt;
  std::string bytes(expectedBytes + 1, '\0');
  std::size_t filled = 0;
  while (true) {
    const ssize_t got = read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    filled += static_cast<std::size_t>(got);
    if (filled > limitBytes) return std::nullopt;
    if (got == 0 || filled == expectedBytes) break;
    if (filled == bytes.size()) bytes.resize(bytes.size() + std::max(bytes.size(), leastGrowth));
  }
  bytes.resize(filled);
  return bytes;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void takeBack(int file, off_t bytes) {
  struct stat status {};
  if (bytes == 0 || fstat(file, &status) != 0 || status.st_size < bytes) return;
  [[maybe_unused]] const int removed = ftruncate(file, status.st_size - bytes);
}

}  // namespace vorli::posix

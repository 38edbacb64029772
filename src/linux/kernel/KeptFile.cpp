#include "linux/kernel/KeptFile.h"

#include <fcntl.h>

namespace vorli::linuxhost {

namespace {

// The kernel returns a long table in pieces of about 4 KiB, each of whole lines. A piece of at most this size
// is the last one, which saves the read that would find the end.
constexpr ssize_t longestLastPiece = 2048;

}  // namespace

std::optional<std::string_view> KeptFile::read(std::span<char> buffer) {
  if (file_) {
    if (const auto text = readOpen(buffer)) return text;
  }
  file_ = posix::FileDescriptor(open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file_) return std::nullopt;
  const auto text = readOpen(buffer);
  if (!text) file_.reset();
  return text;
}

std::optional<std::string_view> KeptFile::readOpen(std::span<char> buffer) const {
  std::size_t length = 0;
  ssize_t got = 0;
  do {
    got = pread(file_.get(), buffer.data() + length, buffer.size() - length, static_cast<off_t>(length));
    if (got < 0) return std::nullopt;
    length += static_cast<std::size_t>(got);
  } while (got > longestLastPiece && length < buffer.size());
  return std::string_view(buffer.data(), length);
}

}  // namespace vorli::linuxhost

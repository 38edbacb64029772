#include "posix/RecentLines.h"

#include "base/UTF8.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace vorli::posix {

namespace {

constexpr std::size_t longestCharacter = 4;

// Number of bytes at the end that may be the start of an incomplete character.
std::size_t unfinishedBytes(std::string_view bytes) {
  for (std::size_t back = 1; back < longestCharacter && back <= bytes.size(); ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if (byte >= 0xC0) {
      const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
      return length > back ? back : 0;
    }
    if (byte < 0x80) return 0;
  }
  return 0;
}

// Offsets of the last line feeds; the newest overwrites the oldest.
class LineFeeds {
 public:
  void add(off_t offset) { offsets_[count_++ % offsets_.size()] = offset; }
  std::size_t count() const { return count_; }
  /// `number` counts from the first line feed of the file; must be one of the last 100.
  off_t at(std::size_t number) const { return offsets_[number % offsets_.size()]; }

 private:
  std::array<off_t, RecentLines::mostLines> offsets_{};
  std::size_t count_ = 0;
};

}  // namespace

RecentLines RecentLines::find(int file, std::size_t most) {
  most = std::min(most, mostLines);
  std::array<char, 4096> chunk;
  std::size_t kept = 0;  // bytes of an unfinished character at the front of the chunk
  off_t offset = 0;
  LineFeeds lineFeeds;
  while (true) {
    const ssize_t got = pread(file, chunk.data() + kept, chunk.size() - kept, offset);
    if (got < 0) return {};
    if (got == 0) break;
    for (ssize_t i = 0; i < got; ++i) {
      if (chunk[kept + static_cast<std::size_t>(i)] == '\n') lineFeeds.add(offset + i);
    }
    offset += got;
    const std::string_view bytes(chunk.data(), kept + static_cast<std::size_t>(got));
    kept = unfinishedBytes(bytes);
    if (!isUTF8(bytes.substr(0, bytes.size() - kept))) return {};
    std::memmove(chunk.data(), bytes.data() + bytes.size() - kept, kept);
  }
  if (kept > 0) return {};
  const std::size_t lines = lineFeeds.count() + 1;
  if (lines <= most) return {lines, 0, offset};
  return {most, most == 0 ? offset : lineFeeds.at(lines - 1 - most) + 1, offset};
}

}  // namespace vorli::posix

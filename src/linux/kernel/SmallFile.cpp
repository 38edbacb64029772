#include "linux/kernel/SmallFile.h"

#include <array>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace vorli::linuxhost {

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (file < 0) return std::nullopt;
  std::string text;
  std::array<char, 4096> piece;
  ssize_t got = 0;
  while (text.size() < limit &&
         (got = read(file, piece.data(), std::min(piece.size(), limit - text.size()))) > 0) {
    text.append(piece.data(), static_cast<std::size_t>(got));
  }
  close(file);
  if (got < 0) return std::nullopt;
  return text;
}

std::string readLink(const std::string& path) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

}  // namespace vorli::linuxhost

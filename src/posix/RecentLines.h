#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace vorli::posix {

/// Position of the last lines of a file.
struct RecentLines {
  std::size_t count = 0;
  off_t begin = 0;
  off_t end = 0;

  /// Finds the last `most` pieces between line feeds of the open file, at most 100. Empty when the file
  /// cannot be read or is not valid UTF-8. Safe in signal handlers.
  static RecentLines find(int file, std::size_t most);

  static constexpr std::size_t mostLines = 100;
};

}  // namespace vorli::posix

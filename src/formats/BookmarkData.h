#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace vorli::formats {

/// The file that a bookmark was made for, read from its bytes. Nothing here reads the disk: the caller checks
/// whether the file still exists.
struct BookmarkData {
  std::string path;    // absolute, below `volume`, without "." or ".."; valid UTF-8
  std::string volume;  // where the file's volume was mounted, "/" for the system's own

  bool operator==(const BookmarkData&) const = default;
};

/// Reads a bookmark. Error: why the bytes do not name a file.
[[nodiscard]] std::expected<BookmarkData, std::string> readBookmarkData(std::string_view bytes);

}  // namespace vorli::formats

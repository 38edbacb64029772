#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace vorli::formats {

/// A kernel table with a key and its value on each line. Asking for keys in the order of the lines reads the
/// table only once.
class KeyedLines {
 public:
  explicit KeyedLines(std::string_view text) : text_(text) {}

  /// The rest of the line that begins with `key`, which must not be empty. Searches from the line after the
  /// last match, then from the first line. Empty when there is no such line.
  std::optional<std::string_view> valueOf(std::string_view key);

 private:
  std::optional<std::string_view> valueBetween(std::size_t first, std::size_t end, std::string_view key);

  std::string_view text_;
  std::size_t next_ = 0;  // start of the line after the last match
};

}  // namespace vorli::formats

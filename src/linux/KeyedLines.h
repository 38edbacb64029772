#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace vorli::linuxhost {

/// A table of the kernel's with a key and its value on each line. Whoever asks for keys in the order of the
/// lines walks over the table once for all of them.
class KeyedLines {
 public:
  explicit KeyedLines(std::string_view text) : text_(text) {}

  /// What follows `key`, which is not empty, on the first line that begins with it behind the one found last,
  /// or else on the first of all. Empty when none does.
  std::optional<std::string_view> valueOf(std::string_view key);

 private:
  std::optional<std::string_view> valueBetween(std::size_t first, std::size_t end, std::string_view key);

  std::string_view text_;
  std::size_t next_ = 0;  // where the line behind the one found last begins
};

}  // namespace vorli::linuxhost

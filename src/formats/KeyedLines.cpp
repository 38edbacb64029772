#include "formats/KeyedLines.h"

#include <algorithm>

namespace vorli::formats {

std::optional<std::string_view> KeyedLines::valueOf(std::string_view key) {
  const auto from = next_;
  if (const auto value = valueBetween(from, text_.size(), key)) return value;
  return valueBetween(0, from, key);
}

// Searches the lines that begin in `first`..`end`.
std::optional<std::string_view> KeyedLines::valueBetween(std::size_t first, std::size_t end,
                                                         std::string_view key) {
  for (std::size_t at = first; at < end;) {
    const auto lineEnd = std::min(text_.find('\n', at), text_.size());
    const bool isKey = text_[at] == key.front() && text_.substr(at, lineEnd - at).starts_with(key);
    if (isKey) {
      next_ = std::min(lineEnd + 1, text_.size());
      return text_.substr(at + key.size(), lineEnd - at - key.size());
    }
    at = lineEnd + 1;
  }
  return std::nullopt;
}

}  // namespace vorli::formats

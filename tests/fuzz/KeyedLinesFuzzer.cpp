#include "formats/KeyedLines.h"
#include "tests/fuzz/Fuzz.h"

#include <optional>

using namespace vorli::formats;

namespace {

// Returns the text after the key on the first line that begins with it.
std::optional<std::string_view> firstValue(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const auto end = text.find('\n');
    const auto line = text.substr(0, end);
    if (line.starts_with(key)) return line.substr(key.size());
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return std::nullopt;
}

}  // namespace

/// The first line is the key, the others are the table.
void fuzz(std::string_view bytes) {
  const auto end = bytes.find('\n');
  if (end == 0 || end == bytes.npos) return;
  const auto key = bytes.substr(0, end);
  const auto text = bytes.substr(end + 1);

  KeyedLines lines(text);
  const auto first = lines.valueOf(key);
  FUZZ_CHECK(first == firstValue(text, key));
  if (!first) return;
  FUZZ_CHECK(isWithin(*first, text));
  const auto behind = static_cast<std::size_t>(first->data() + first->size() - text.data());
  const auto second = behind < text.size() ? firstValue(text.substr(behind + 1), key) : std::nullopt;
  FUZZ_CHECK(lines.valueOf(key) == (second ? second : first));
}

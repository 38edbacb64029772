#pragma once

#include <optional>
#include <string_view>

namespace vorli::formats {

/// Finds the value of a key in a group of a desktop entry, or of a list in that format, such as the lists of
/// programs for each type of file. `header` has its brackets. The first of two equal keys counts, and groups
/// of one name are one group. Empty when there is no such key.
std::optional<std::string_view> valueInGroup(std::string_view text, std::string_view header,
                                             std::string_view key);

}  // namespace vorli::formats

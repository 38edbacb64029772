#pragma once

#include <string_view>

namespace vorli {

/// True for a word such as LANG=C, which sets a variable for the command that follows it. A word with a slash
/// before its equals sign is a path.
constexpr bool isAssignment(std::string_view word) {
  const auto equals = word.find('=');
  return equals != std::string_view::npos && equals > 0 && equals < word.find('/');
}

}  // namespace vorli

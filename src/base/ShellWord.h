#pragma once

#include <string_view>

namespace vorli {

/// Characters between the words of a command. A carriage return is part of a word.
inline constexpr std::string_view shellBlanks = " \t\n";

/// True for a word such as LANG=C, which sets a variable for the command that follows it. A word with a slash
/// before its equals sign is a path.
constexpr bool isAssignment(std::string_view word) {
  const auto equals = word.find('=');
  return equals != std::string_view::npos && equals > 0 && equals < word.find('/');
}

}  // namespace vorli

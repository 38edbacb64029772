#include "posix/TypeName.h"

#include <cstddef>

namespace vorli::posix {

namespace {

constexpr std::string_view anonymousNamespace = "_GLOBAL__N_1";

bool startsWithDigit(std::string_view text) {
  return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

// Removes a length-prefixed name from the front and returns it. Empty when there is none.
std::string_view takeName(std::string_view& rest) {
  std::size_t length = 0;
  while (startsWithDigit(rest) && length <= rest.size()) {
    length = 10 * length + static_cast<std::size_t>(rest.front() - '0');
    rest.remove_prefix(1);
  }
  if (length > rest.size()) return {};
  const auto name = rest.substr(0, length);
  rest.remove_prefix(length);
  return name;
}

}  // namespace

void addTypeName(std::string_view given, TextBuffer& text) {
  FixedText<256> readable;
  auto rest = given;
  const bool isNested = rest.starts_with('N') && rest.ends_with('E');
  if (isNested) rest = rest.substr(1, rest.size() - 2);
  const bool isStandard = rest.starts_with("St");
  if (isStandard) {
    rest.remove_prefix(2);
    readable.add("std");
  }
  bool hasName = false;
  while (startsWithDigit(rest)) {
    const auto name = takeName(rest);
    if (name.empty()) break;
    if (hasName || isStandard) readable.add("::");
    readable.add(name == anonymousNamespace ? "(anonymous namespace)" : name);
    hasName = true;
  }
  text.add(rest.empty() && hasName && !readable.isFull() ? readable.text() : given);
}

}  // namespace vorli::posix

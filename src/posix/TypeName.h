#pragma once

#include "posix/TextBuffer.h"

#include <string_view>

namespace vorli::posix {

/// Adds a class's name in readable form, from the mangled name that `std::type_info` returns on both systems:
/// "St13runtime_error" gives std::runtime_error. The name of a template or a built-in type is added as given.
/// Allocates nothing, unlike the language's own function.
void addTypeName(std::string_view given, TextBuffer& text);

}  // namespace vorli::posix

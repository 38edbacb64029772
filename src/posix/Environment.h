#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::posix {

/// The value of an environment variable; empty when it is not set.
std::string environmentVariable(const char* name);

/// The parts of a list such as PATH; empty ones are left out.
std::vector<std::string> splitList(std::string_view list, char separator = ':');

}  // namespace vorli::posix

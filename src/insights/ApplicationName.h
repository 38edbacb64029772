#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// The name as a person would say it: without a helper's or the maker's additions, and with its first letter
/// raised. Empty for what is a path, an identifier, a process number or unreadable: that never reaches the
/// user.
std::optional<std::string> cleanedApplicationName(std::string_view name);

}  // namespace vorli

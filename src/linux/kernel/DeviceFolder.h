#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The names in a folder of devices that begin with `prefix`, in alphabetical order; at most 64. Empty when
/// the folder does not exist.
std::vector<std::string> deviceNames(const std::string& folder, std::string_view prefix = "");

/// Longest text of an attribute that is read.
inline constexpr std::size_t longestAttribute = 64;

/// An attribute of a device, without blanks around it. Empty when it cannot be read.
std::optional<std::string> readAttribute(const std::string& path);

}  // namespace vorli::linuxhost

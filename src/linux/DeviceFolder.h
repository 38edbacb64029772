#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The names in a folder of devices that begin with `prefix`, in alphabetical order; at most 64. Empty when
/// there is no such folder.
std::vector<std::string> deviceNames(const std::string& folder, std::string_view prefix = "");

}  // namespace vorli::linuxhost

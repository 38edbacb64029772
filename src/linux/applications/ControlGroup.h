#pragma once

#include <cstdint>
#include <string>

namespace vorli::linuxhost {

/// Returns the process of a control group that started first; 0 when the group is empty, gone or unreadable.
/// `folder` is the group's folder, and `root` is the prefix of the paths in /proc.
std::int32_t oldestMember(const std::string& folder, const std::string& root = "");

}  // namespace vorli::linuxhost

#pragma once

#include <string>

namespace vorli::posix {

/// Follows links.
bool isFolder(const std::string& path);

/// Creates every missing folder above `path`, for this user only. A folder that cannot be created shows when
/// the path is used.
void makeFoldersAbove(const std::string& path);

}  // namespace vorli::posix

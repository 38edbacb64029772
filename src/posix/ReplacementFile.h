#pragma once

#include "posix/FileSystemCalls.h"

#include <string>

namespace vorli::posix {

/// Replaces the content of a regular file, as `ports::StartupFiles::setAside` promises.
bool exchangeContent(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                     const std::string& content, const std::string& aside);

/// Replaces a regular file by another, as `ports::StartupFiles::putBack` promises.
bool replaceByFile(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                   const std::string& replacement);

/// Replaces the content of a regular file, as `ports::StartupFiles::rewrite` promises. Whoever reads the file
/// meanwhile sees the old or the new content.
bool replaceContent(const FileSystemCalls& calls, const std::string& path, const std::string& expected,
                    const std::string& content);

}  // namespace vorli::posix

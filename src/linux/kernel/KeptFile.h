#pragma once

#include "posix/FileDescriptor.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// A file of the kernel that is read repeatedly through one open descriptor. Opened at the first reading, and
/// again when a reading fails. Never waits for a FIFO or a terminal.
class KeptFile {
 public:
  explicit KeptFile(std::string path) : path_(std::move(path)) {}

  /// Reads the current content of the file into `buffer`, at most as much as fits. Empty when the file does
  /// not exist or cannot be read.
  std::optional<std::string_view> read(std::span<char> buffer);

 private:
  std::optional<std::string_view> readOpen(std::span<char> buffer) const;

  std::string path_;
  posix::FileDescriptor file_;
};

}  // namespace vorli::linuxhost

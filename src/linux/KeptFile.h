#pragma once

#include "posix/FileDescriptor.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// A file of the kernel's that is read again and again through one open descriptor. Opened at the first
/// reading, and anew when a reading fails. Never waits for a FIFO or a terminal.
class KeptFile {
 public:
  explicit KeptFile(std::string path) : path_(std::move(path)) {}

  /// The file as it is now, up to the size of the buffer that it is written to. Empty when it is not there or
  /// cannot be read.
  std::optional<std::string_view> read(std::span<char> buffer);

 private:
  std::optional<std::string_view> readOpen(std::span<char> buffer) const;

  std::string path_;
  posix::FileDescriptor file_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "posix/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// Exact resident sizes of the few largest processes. These remain the same from pass to pass, so their statm
/// files are kept open, which saves two of three system calls. The kept file of a process that has ended
/// cannot be read, even when its identifier is in use again.
class ResidentSizes {
 public:
  /// Closes the files that were not read since the last call.
  void beginPass();

  /// Resident size in pages. Empty when the process is gone or may not be read. `procFolder` is an open
  /// descriptor of /proc.
  std::optional<std::uint64_t> readPages(std::int32_t pid, int procFolder);

  /// Largest number of files that are kept open.
  static constexpr std::size_t mostKept = 64;
  std::size_t keptCount() const { return kept_.size(); }

 private:
  struct Kept {
    std::int32_t pid;
    posix::FileDescriptor file;
    bool isUsed;
  };

  std::vector<Kept> kept_;
};

}  // namespace vorli::linuxhost

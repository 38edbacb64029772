#pragma once

#include "posix/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// Exact resident sizes of the few largest processes, which stay the same ones from pass to pass: their statm
/// files are kept open, which saves two of three calls to the kernel. A kept file of a process that has
/// ended cannot be read, whoever bears its identifier now.
class ResidentSizes {
 public:
  /// Closes the files that were not asked for since the last call.
  void beginPass();

  /// In pages. Empty when the process is gone or may not be read. `procFolder` is an open descriptor of
  /// /proc.
  std::optional<std::uint64_t> readPages(std::int32_t pid, int procFolder);

  /// More files than this are not kept.
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

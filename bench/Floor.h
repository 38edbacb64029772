#pragma once

#include "posix/FileDescriptor.h"

#include <cstddef>
#include <memory>

namespace vorli::bench {

/// The least that a look at every process can cost on this system: one listing of /proc, then opening,
/// reading and closing each PID/stat without using what was read. Everything else is measured against it.
class Floor {
 public:
  Floor();

  /// Returns the number of processes.
  std::size_t pass();

 private:
  posix::FileDescriptor folder_;
  std::unique_ptr<char[]> entries_;
};

}  // namespace vorli::bench

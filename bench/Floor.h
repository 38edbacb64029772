#pragma once

#include "posix/FileDescriptor.h"

#include <cstddef>
#include <memory>

namespace vorli::bench {

/// The least that a look at every process costs in this system's terms: one listing of /proc, and opening,
/// reading and closing PID/stat of each, with nothing done about what was read. Everything else is measured
/// against it.
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

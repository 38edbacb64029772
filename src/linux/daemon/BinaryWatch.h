#pragma once

#include "posix/FileDescriptor.h"

#include <string>

namespace vorli::linuxhost {

/// Notices when the file that this process runs from is replaced or removed, so that an upgrade takes effect
/// with the next call.
class BinaryWatch {
 public:
  BinaryWatch();

  /// Readable when the file may have changed; -1 when the system provides no watch.
  int fileDescriptor() const { return watch_.get(); }
  /// Reads the pending events. True when the path now names another file, or none.
  bool isReplaced();

 private:
  std::string path_;
  posix::FileDescriptor watch_;
};

}  // namespace vorli::linuxhost

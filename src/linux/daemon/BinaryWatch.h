#pragma once

#include "linux/daemon/FileDescriptor.h"

#include <string>

namespace vorli::linuxhost {

/// Notices when the file that this process runs from is replaced or removed, so that an upgrade takes effect
/// with the next call.
class BinaryWatch {
 public:
  BinaryWatch();

  /// Can be read when there is something to look at; -1 when the system gives no watch.
  int fileDescriptor() const { return watch_.get(); }
  /// Takes the news in. True when another file, or none, bears the name now.
  bool isReplaced();

 private:
  std::string path_;
  FileDescriptor watch_;
};

}  // namespace vorli::linuxhost

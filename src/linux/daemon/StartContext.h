#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// What the process that started the daemon told it by way of the environment.
struct StartContext {
  /// The service manager is our parent; it fixes the bus and takes the log.
  bool startedByServiceManager = false;
  /// "device:inode" of a stream to the journal, as which standard error may be open.
  std::string journalStream;

  /// Reads the environment and empties it. Only the bus that started us is told on to the bus library:
  /// nothing else that somebody set may change what the daemon does. Before the first thread.
  static StartContext take();
};

}  // namespace vorli::linuxhost

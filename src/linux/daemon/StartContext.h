#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Facts that the process that started the daemon passed in the environment.
struct StartContext {
  /// True when the service manager is the parent process; it determines the bus and collects the log.
  bool startedByServiceManager = false;
  /// "device:inode" of a stream to the journal. Standard error may be that stream.
  std::string journalStream;

  /// Reads the environment and clears it. Only the address of the bus that started the daemon is passed on to
  /// the bus library; no other variable may change what the daemon does. Call it before the first thread
  /// starts.
  static StartContext take();
};

}  // namespace vorli::linuxhost

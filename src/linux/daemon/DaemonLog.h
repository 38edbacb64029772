#pragma once

#include "linux/daemon/FileDescriptor.h"
#include "linux/daemon/StartContext.h"

#include <cstdint>
#include <string>

namespace vorli::linuxhost {

/// The daemon's log: the journal, else the system's log socket (facility authpriv), else standard error.
/// Never waits for a reader: a line that finds no room is counted and told of later. Main thread.
class DaemonLog {
 public:
  enum class Level { error = 3, warning = 4, notice = 5, info = 6 };

  explicit DaemonLog(const StartContext& context);

  void write(Level level, const std::string& line);

 private:
  enum class Target { journalStream, logSocket, standardError };

  bool send(Level level, const std::string& line);

  Target target_ = Target::standardError;
  FileDescriptor socket_;
  std::uint64_t lost_ = 0;
};

}  // namespace vorli::linuxhost

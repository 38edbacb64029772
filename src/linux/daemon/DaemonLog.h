#pragma once

#include "linux/daemon/StartContext.h"
#include "posix/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace vorli::linuxhost {

/// The daemon's log: the journal, otherwise the system's log socket (facility authpriv), otherwise standard
/// error. Never waits for a reader: lines that do not fit are counted, and their number is logged later. When
/// the reader has ended, each line tries the log socket again. Main thread.
class DaemonLog {
 public:
  enum class Level { error = 3, warning = 4, notice = 5, info = 6, debug = 7 };

  explicit DaemonLog(const StartContext& context, std::string logSocketPath = "/dev/log");

  void write(Level level, const std::string& line);

 private:
  enum class Target { journalStream, logSocket, standardErrorSocket, standardError };

  bool send(Level level, const std::string& line);
  /// Returns false, with `errno` set, if the line was not accepted.
  bool trySend(Level level, const std::string& line) const;
  bool connectToLogSocket();

  const std::string logSocketPath_;
  Target target_ = Target::standardError;
  posix::FileDescriptor socket_;
  /// Standard error, opened again so that only this descriptor is non-blocking: the process that started the
  /// daemon writes to standard error too.
  posix::FileDescriptor standardError_;
  std::uint64_t lost_ = 0;
};

}  // namespace vorli::linuxhost

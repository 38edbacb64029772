#pragma once

#include "daemon/RequestDesk.h"

#include <os/log.h>
#include <string>

namespace vorli::machost {

/// The daemon's lines in the system's log. Any thread; never waits.
class DaemonLog {
 public:
  DaemonLog();

  void write(daemon::LogImportance importance, const std::string& line);

 private:
  const os_log_t log_;
};

}  // namespace vorli::machost

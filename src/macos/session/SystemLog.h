#pragma once

#include "ports/SystemLog.h"

#include <map>
#include <mutex>
#include <os/log.h>
#include <string>
#include <utility>

namespace vorli::machost {

/// The system's log, with one log object for each subsystem and category.
class SystemLog final : public ports::SystemLog {
 public:
  /// Passes the line on as public, because private texts are already hidden.
  void write(const LogRecord& record) override;

 private:
  os_log_t logFor(const LogRecord& record);

  std::mutex mutex_;
  std::map<std::pair<std::string, std::string>, os_log_t> logs_;
};

}  // namespace vorli::machost

#include "macos/daemon/DaemonLog.h"

#include "contract/HelperProtocol.h"

namespace vorli::machost {

namespace {

os_log_type_t typeOf(daemon::LogImportance importance) {
  switch (importance) {
    case daemon::LogImportance::detail:
      return OS_LOG_TYPE_DEBUG;
    case daemon::LogImportance::notice:
      return OS_LOG_TYPE_DEFAULT;
    case daemon::LogImportance::warning:
      return OS_LOG_TYPE_ERROR;
  }
  return OS_LOG_TYPE_ERROR;
}

}  // namespace

DaemonLog::DaemonLog() : log_(os_log_create(helper::serviceName.data(), "daemon")) {}

// The request desk has already made its lines safe to print.
void DaemonLog::write(daemon::LogImportance importance, const std::string& line) {
  os_log_with_type(log_, typeOf(importance), "%{public}s", line.c_str());
}

}  // namespace vorli::machost

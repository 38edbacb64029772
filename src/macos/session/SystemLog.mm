#include "macos/session/SystemLog.h"

namespace vorli::machost {

namespace {

os_log_type_t typeOf(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return OS_LOG_TYPE_DEBUG;
    case LogLevel::info:
      return OS_LOG_TYPE_INFO;
    case LogLevel::standard:
      return OS_LOG_TYPE_DEFAULT;
    case LogLevel::error:
      return OS_LOG_TYPE_ERROR;
    case LogLevel::fault:
      return OS_LOG_TYPE_FAULT;
  }
  return OS_LOG_TYPE_DEFAULT;
}

}  // namespace

void SystemLog::write(const LogRecord& record) {
  os_log_with_type(logFor(record), typeOf(record.level), "%{public}s", record.message.c_str());
}

os_log_t SystemLog::logFor(const LogRecord& record) {
  const std::pair<std::string, std::string> key(record.subsystem, record.category);
  const std::lock_guard lock(mutex_);
  auto& log = logs_[key];
  if (!log) log = os_log_create(key.first.c_str(), key.second.c_str());
  return log;
}

}  // namespace vorli::machost

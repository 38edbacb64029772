#include "linux/session/SystemLog.h"

#include <cstdio>
#include <string>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

int priority(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return LOG_DEBUG;
    case LogLevel::info:
      return LOG_INFO;
    case LogLevel::standard:
      return LOG_NOTICE;
    case LogLevel::error:
      return LOG_ERR;
    case LogLevel::fault:
      return LOG_CRIT;
  }
  return LOG_NOTICE;
}

}  // namespace

// sd_journal_send reports success even when nobody listens, so the socket itself is checked.
SystemLog::SystemLog() : hasJournal_(access("/run/systemd/journal/socket", W_OK) == 0) {}

void SystemLog::write(const LogRecord& record) {
  if (hasJournal_) {
    const std::string subsystem(record.subsystem), category(record.category);
    sd_journal_send("MESSAGE=%s", record.message.c_str(), "PRIORITY=%d", priority(record.level),
                    "SYSLOG_IDENTIFIER=vorli", "SUBSYSTEM=%s", subsystem.c_str(), "CATEGORY=%s",
                    category.c_str(), nullptr);
    return;
  }
  if (record.level == LogLevel::debug || record.level == LogLevel::info) return;
  // One call per line, so that lines of several threads do not mix.
  const std::string line = "vorli " + std::string(record.category) + ": " + record.message + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace vorli::linuxhost

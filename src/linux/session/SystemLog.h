#pragma once

#include "ports/SystemLog.h"

namespace vorli::linuxhost {

/// Writes to the journal, with the category as a separate field, or to standard error where no journal runs.
/// Debug and info lines are written to the journal only.
class SystemLog final : public ports::SystemLog {
 public:
  SystemLog();

  void write(const LogRecord& record) override;

 private:
  const bool hasJournal_;
};

}  // namespace vorli::linuxhost

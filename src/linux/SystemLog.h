#pragma once

#include "ports/SystemLog.h"

namespace vorli::linuxhost {

/// The journal, with the class's category as a field of its own; standard error where no journal runs. Debug
/// and info lines go to the journal only.
class SystemLog final : public ports::SystemLog {
 public:
  SystemLog();

  void write(const LogRecord& record) override;

 private:
  const bool hasJournal_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "ports/SystemLog.h"

#include <mutex>
#include <string>
#include <vector>

namespace vorli::fakes {

/// Records the lines of the system's log.
class SystemLog final : public ports::SystemLog {
 public:
  struct Line {
    LogLevel level;
    std::string subsystem;
    std::string category;
    std::string message;
    bool operator==(const Line&) const = default;
  };

  void write(const LogRecord& record) override {
    const std::lock_guard guard(lock_);
    lines_.push_back(
        {record.level, std::string(record.subsystem), std::string(record.category), record.message});
  }

  std::vector<Line> lines() const {
    const std::lock_guard guard(lock_);
    return lines_;
  }

 private:
  mutable std::mutex lock_;
  std::vector<Line> lines_;
};

}  // namespace vorli::fakes

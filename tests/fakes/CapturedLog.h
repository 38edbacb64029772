#pragma once

#include "base/Logger.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace vorli::fakes {

/// Collects the process's log lines as long as the object exists.
class CapturedLog {
 public:
  struct Line {
    LogLevel level;
    std::string category;
    std::string message;
    bool operator==(const Line&) const = default;
  };

  CapturedLog()
      : outer_(Logger::setSink([this](const LogRecord& record) {
          const std::lock_guard guard(lock_);
          lines_.push_back({record.level, std::string(record.category), record.message});
        })) {}
  ~CapturedLog() { Logger::setSink(outer_); }

  std::vector<Line> lines() const {
    const std::lock_guard guard(lock_);
    return lines_;
  }
  std::vector<std::string> messages() const {
    std::vector<std::string> result;
    for (const auto& line : lines()) result.push_back(line.message);
    return result;
  }
  int count(std::string_view message) const {
    const auto all = messages();
    return static_cast<int>(std::count(all.begin(), all.end(), message));
  }
  void clear() {
    const std::lock_guard guard(lock_);
    lines_.clear();
  }

 private:
  mutable std::mutex lock_;
  std::vector<Line> lines_;
  Logger::Sink outer_;
};

}  // namespace vorli::fakes

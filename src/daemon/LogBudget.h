#pragma once

#include "base/Scheduler.h"
#include "daemon/Request.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>

namespace vorli::daemon {

/// Limits the log lines that a user can cause with requests that are not granted: a fixed number in a window
/// of time, then one line with the number of lines left out. Main thread.
class LogBudget {
 public:
  static constexpr std::size_t mostLines = 20;
  static constexpr double windowSeconds = 10.0;

  /// Empty for all callers whose user is unknown.
  using User = std::optional<UserId>;
  using Tell = std::function<void(User, std::size_t leftOut)>;

  /// Calls `tell` at the end of each window in which lines were left out, and in the destructor.
  LogBudget(Scheduler& scheduler, Tell tell) : scheduler_(scheduler), tell_(std::move(tell)) {}
  ~LogBudget();
  LogBudget(const LogBudget&) = delete;
  LogBudget& operator=(const LogBudget&) = delete;

  /// Returns true when `user` may log one more line; otherwise counts the line as left out.
  [[nodiscard]] bool take(User user);

 private:
  struct Window {
    double endsAt = 0.0;
    std::size_t lines = 0;
    std::size_t leftOut = 0;
    Scheduler::TimerId timer = 0;
  };

  Window& windowOf(User user);
  void close(User user);

  Scheduler& scheduler_;
  Tell tell_;
  std::map<User, Window> windows_;
};

}  // namespace vorli::daemon

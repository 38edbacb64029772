#include "daemon/LogBudget.h"

namespace vorli::daemon {

LogBudget::~LogBudget() {
  for (const auto& [user, window] : windows_) {
    scheduler_.cancel(window.timer);
    if (window.leftOut > 0) tell_(user, window.leftOut);
  }
}

bool LogBudget::take(User user) {
  auto& window = windowOf(user);
  if (window.lines < mostLines) {
    ++window.lines;
    return true;
  }
  if (++window.leftOut == 1)
    window.timer = scheduler_.after(window.endsAt - scheduler_.now(), [this, user] { close(user); });
  return false;
}

// A window without a timer has nothing to report; it is dropped when the next one is opened.
LogBudget::Window& LogBudget::windowOf(User user) {
  const double now = scheduler_.now();
  const auto hasEnded = [now](const auto& entry) {
    return entry.second.leftOut == 0 && entry.second.endsAt <= now;
  };
  const auto known = windows_.find(user);
  if (known != windows_.end() && !hasEnded(*known)) return known->second;
  std::erase_if(windows_, hasEnded);
  return windows_[user] = Window{.endsAt = now + windowSeconds};
}

void LogBudget::close(User user) {
  const auto ended = windows_.extract(user);
  tell_(user, ended.mapped().leftOut);
}

}  // namespace vorli::daemon

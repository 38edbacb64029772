#pragma once

#include "base/Scheduler.h"
#include "ports/StatusItem.h"

#include <functional>
#include <optional>

namespace vorli::ui {

/// Forwards pictures that look different from the last forwarded one: the first two at once, then at most one
/// per interval. The newest picture always arrives. Main thread.
class PictureThrottle {
 public:
  /// Panels spend some milliseconds on each new icon.
  static constexpr double intervalSeconds = 0.25;

  using Send = std::function<void(const ports::StatusPicture&)>;

  PictureThrottle(Scheduler& scheduler, Send send);
  ~PictureThrottle();
  PictureThrottle(const PictureThrottle&) = delete;
  PictureThrottle& operator=(const PictureThrottle&) = delete;

  void offer(const ports::StatusPicture& picture);

 private:
  void sendLatest();

  Scheduler& scheduler_;
  Send send_;
  std::optional<ports::StatusPicture> latest_;
  std::optional<ports::StatusPicture> sent_;
  double nextAllowed_ = 0.0;
  Scheduler::TimerId timer_ = 0;
};

}  // namespace vorli::ui

#pragma once

#include "base/UniqueFunction.h"

namespace vorli::ports {

/// A second thread for work that would hold up the main loop; one piece at a time. Main thread. Who started a
/// piece that uses him calls `abandon` before he goes.
class BackgroundWork {
 public:
  using Work = UniqueFunction<void()>;

  virtual ~BackgroundWork() = default;

  /// Runs `work` on another thread and then `done` on the main thread, from its loop. Not while a piece is
  /// under way. Does not block.
  virtual void start(Work work, Work done) = 0;

  /// True from `start` until just before its `done` is called.
  virtual bool isUnderWay() const = 0;

  /// Calls the `done` of the piece under way inside this call; nothing without one. Blocks until the work is
  /// over.
  virtual void finish() = 0;

  /// As `finish`, but its `done` is dropped.
  virtual void abandon() = 0;
};

}  // namespace vorli::ports

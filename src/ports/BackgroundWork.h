#pragma once

#include "base/UniqueFunction.h"

namespace vorli::ports {

/// A second thread for work that would block the main loop; one piece at a time. An object that is used by
/// its own work must call `abandon` before it is destroyed. Main thread.
class BackgroundWork {
 public:
  using Work = UniqueFunction<void()>;

  virtual ~BackgroundWork() = default;

  /// Runs `work` on another thread, then `done` from the main loop. Must not be called while a piece is in
  /// progress. Does not block.
  virtual void start(Work work, Work done) = 0;

  /// True from `start` until just before its `done` is called.
  virtual bool isUnderWay() const = 0;

  /// Waits for the piece in progress and calls its `done` before returning; does nothing when there is none.
  /// Blocks until the work has finished.
  virtual void finish() = 0;

  /// Like `finish`, but drops the piece's `done`.
  virtual void abandon() = 0;
};

}  // namespace vorli::ports

#pragma once

#include <string>

namespace vorli::ports {

/// The system's service manager, which identifies a job by the path of its file. The outcome is not reported;
/// a missing manager or a refusal is ignored. Any thread, one at a time; each call blocks until the manager's
/// tool has exited, at most 10 seconds.
class LaunchControl {
 public:
  virtual ~LaunchControl() = default;

  /// Loads the job, and starts it if its file says so.
  virtual void load(const std::string& path) = 0;
  /// Stops and unloads the job.
  virtual void unload(const std::string& path) = 0;
  /// Makes the manager notice files that were added, moved or removed, where it does not do so by itself.
  virtual void reload() = 0;
};

}  // namespace vorli::ports

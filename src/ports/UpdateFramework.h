#pragma once

#include "base/OnceReply.h"

#include <memory>
#include <optional>
#include <string>

namespace vorli::ports {

/// Receives the result of a check for updates. Called on the main thread, never inside a call of the updater.
class UpdaterDelegate {
 public:
  virtual ~UpdaterDelegate() = default;

  virtual void didFinishLoadingAppcast() = 0;
  /// Code 1001 means that there is no update. `description` is written for the user.
  virtual void didAbortWithError(int code, std::string description) = 0;
};

/// Checks for updates of this program. Main thread; no call blocks. Calls nothing after it is destroyed.
class Updater {
 public:
  virtual ~Updater() = default;

  /// Whether to check automatically, at the interval set by `setUpdateCheckInterval`.
  virtual void setAutomaticallyChecksForUpdates(bool checks) = 0;
  virtual void setUpdateCheckInterval(double seconds) = 0;

  /// False while a check is in progress.
  virtual bool canCheckForUpdates() const = 0;
  /// Starts a check that the user asked for: the framework shows its progress and result.
  virtual void checkForUpdates() = 0;
  /// Checks silently: the framework shows something only to offer an update that it found.
  virtual void checkForUpdatesInBackground() = 0;
};

/// The source of updates of this program. Main thread; no call blocks.
class UpdateFramework {
 public:
  virtual ~UpdateFramework() = default;

  /// Finds what authenticates an update: the public key that updates are signed with, or the name of the
  /// package that installed the program. Empty when there is neither. Replies on the main thread: at once
  /// where the answer is part of the program, and not before the system answers otherwise.
  virtual void findSource(OnceReply<std::optional<std::string>> reply) = 0;

  /// Call it once, after a source was found. `delegate` must outlive the updater.
  virtual std::unique_ptr<Updater> startUpdater(UpdaterDelegate& delegate) = 0;
};

}  // namespace vorli::ports

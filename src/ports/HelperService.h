#pragma once

#include "base/OnceReply.h"

#include <expected>
#include <functional>
#include <string>

namespace vorli::ports {

/// Origin of a request for which the system may ask for a password. Only a user who has just pressed a button
/// expects that prompt; a program that is starting must not cause it.
enum class AskedBy { user, program };

/// Whether the user has allowed an action.
enum class Consent { granted, missing };

/// Registration of the root daemon with the system. Main thread; no call blocks.
class HelperService {
 public:
  virtual ~HelperService() = default;

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found, other values as the system reports them.
  /// Never prompts or starts the daemon; returns the last known value where reading takes time.
  virtual int status() = 0;

  /// Reads the status again, and replies on the main thread once `status()` returns it. There is no reply
  /// until the system answers.
  virtual void readStatus(OnceReply<int> reply) = 0;

  /// True when the registered daemon is of another build than the one that came with the program, and
  /// registering at the user's request would replace it. Returns the last known value, like `status()`. False
  /// where the system itself keeps the two together.
  virtual bool isOtherBuildRegistered() = 0;

  /// `handler` runs on the main thread, never inside a call of this port, whenever `status()` or
  /// `isOtherBuildRegistered()` may have changed. Never called where the system does not report changes.
  virtual void setChangeHandler(std::function<void()> handler) = 0;

  /// Registers the daemon. Error: the system's text. On success the user's approval may still be pending: see
  /// `status()`.
  [[nodiscard]] virtual std::expected<void, std::string> registerDaemon(AskedBy asker) = 0;
  /// `handler` runs on the main thread, never inside a call of this port, with the system's text, when a
  /// registration fails after `registerDaemon` reported success, or when an approval that the user wants to
  /// give cannot be given.
  virtual void setFailureHandler(std::function<void(std::string)> handler) = 0;
  /// `handler` runs on the main thread, after that of the failure, when the system needed the user's
  /// password and no program of the desktop could ask for it. Never called where the system itself asks.
  virtual void setNoPromptHandler(std::function<void()> handler) = 0;
  /// Removes the registration. Replies on the main thread. Error: the system's text.
  virtual void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) = 0;

  /// Shows the user where to approve the daemon. Must not cause a password prompt when the program asks, nor
  /// when the daemon is approved already.
  virtual void openSystemSettingsLoginItems(AskedBy asker) = 0;

  /// Whether the system would let the daemon move a startup item for this process now, without asking the
  /// user first. Replies on the main thread and never prompts. Granted at once where registering the daemon
  /// is the only consent needed.
  virtual void startupItemConsent(OnceReply<Consent> reply) = 0;
  /// Asks the user, who wants to change a startup item, for the consent that is missing. Replies on the main
  /// thread, never inside the call, when the user has answered either way. Error: the system's text, when
  /// nobody could be asked or the consent cannot be given. There is no reply while the user is being asked
  /// already.
  virtual void askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) = 0;
};

}  // namespace vorli::ports

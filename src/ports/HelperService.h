#pragma once

#include "base/OnceReply.h"

#include <expected>
#include <functional>
#include <string>

namespace vorli::ports {

/// Who wants something of the system that may ask for a password. Only a user who has just pressed a button
/// expects that question; a program that starts may not raise it.
enum class AskedBy { user, program };

/// Whether the user has allowed a thing.
enum class Consent { granted, missing };

/// Registration of the root daemon with the system. Main thread; no call blocks.
class HelperService {
 public:
  virtual ~HelperService() = default;

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found, anything else as the system says. Read
  /// without a prompt and without starting the daemon; the last known value where reading takes time.
  virtual int status() = 0;

  /// Reads the status anew, and answers on the main thread when `status()` gives it. Unanswered for as long
  /// as the system does not answer.
  virtual void readStatus(OnceReply<int> reply) = 0;

  /// `handler` runs on the main thread, never inside a call of this port, whenever `status()` has changed.
  /// Never where the system does not tell.
  virtual void setChangeHandler(std::function<void()> handler) = 0;

  /// Error: the system's text. Success may mean that the user is being asked: `status()` then tells how it
  /// stands.
  virtual std::expected<void, std::string> registerDaemon(AskedBy asker) = 0;
  /// `handler` runs on the main thread, never inside a call of this port, with the system's text when a
  /// registration that began well has failed behind its success.
  virtual void setFailureHandler(std::function<void(std::string)> handler) = 0;
  /// Answered on the main thread. Error: the system's text.
  virtual void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) = 0;

  /// Leads the user to where the daemon is approved. When a program asks, nothing may prompt for a password.
  virtual void openSystemSettingsLoginItems(AskedBy asker) = 0;

  /// Whether the system would let the daemon move a startup item for this process now, without asking the
  /// user first. Answered on the main thread, without a prompt; granted at once where the registration is
  /// all the consent there is.
  virtual void startupItemConsent(OnceReply<Consent> reply) = 0;
};

}  // namespace vorli::ports

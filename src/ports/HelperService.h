#pragma once

#include "base/OnceReply.h"

#include <expected>
#include <string>

namespace vorli::ports {

/// Registration of the root daemon with the system. Main thread; no call blocks.
class HelperService {
 public:
  virtual ~HelperService() = default;

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found, anything else as the system says. Read
  /// without a prompt and without starting the daemon; the last known value where reading takes time.
  virtual int status() = 0;

  /// Error: the system's text.
  virtual std::expected<void, std::string> registerDaemon() = 0;
  /// Answered on the main thread. Error: the system's text.
  virtual void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) = 0;

  /// Leads the user to where the daemon is approved.
  virtual void openSystemSettingsLoginItems() = 0;
};

}  // namespace vorli::ports

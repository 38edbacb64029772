#pragma once

#include "base/OnceReply.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vorli {

/// How the daemon ended a request. Code 0: the work is done. Any other code of the daemon's is a failure, and
/// `output` the text to log. -1 is never the daemon's: the call did not reach it, or it did not answer in
/// time.
struct HelperReply {
  std::int32_t exitCode = 0;
  std::string output;

  bool operator==(const HelperReply&) const = default;
};

namespace helper {
inline constexpr std::string_view serviceName = "com.kv.vorli.helper";
inline constexpr std::string_view daemonPropertyList = "com.kv.vorli.helper.plist";
/// Compared byte for byte: a daemon with any other version counts as stale.
inline constexpr std::string_view version = "1.2.3";
/// The one signal that the daemon delivers: "continue", by the number of the system that the contract comes
/// from. It is a name in this contract and never reaches a kernel that numbers its signals otherwise.
inline constexpr std::int32_t continueSignal = 19;
}  // namespace helper

/// The whole contract between the application and its root daemon. A request is sent and answered once; there
/// is no progress and no cancellation. A request that reaches no daemon is never answered. Requests are made
/// on the main thread and never block; an answer may come on any thread.
class HelperProtocol {
 public:
  virtual ~HelperProtocol() = default;

  virtual void ping(OnceReply<std::string> reply) = 0;
  virtual void version(OnceReply<std::string> reply) = 0;
  virtual void purgeMemory(OnceReply<HelperReply> reply) = 0;
  virtual void flushDNS(OnceReply<HelperReply> reply) = 0;
  virtual void killPID(std::int32_t pid, std::int32_t signal, OnceReply<HelperReply> reply) = 0;
  virtual void dumpBTM(OnceReply<HelperReply> reply) = 0;
  /// Both paths are absolute.
  virtual void moveLaunchAgentPlist(std::string from, std::string to, OnceReply<HelperReply> reply) = 0;
};

}  // namespace vorli

#pragma once

#include "base/OnceReply.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vorli {

/// The daemon's result for a request. Code 0 means that the work is done. Any other code is a failure, and
/// `output` is the text to log. The daemon never sends -1: it means that the call did not reach the daemon,
/// or that no answer came in time.
struct HelperReply {
  std::int32_t exitCode = 0;
  std::string output;

  bool operator==(const HelperReply&) const = default;
};

namespace helper {
inline constexpr std::string_view serviceName = "com.kv.vorli.helper";
inline constexpr std::string_view daemonPropertyList = "com.kv.vorli.helper.plist";
/// Version of the contract, compared byte for byte: a daemon with any other version counts as stale.
inline constexpr std::string_view version = "1.2.3";
/// The only signal that the daemon delivers: "continue", with its number on macOS, where the contract comes
/// from. It is only an identifier in this contract and is never passed to a kernel with other signal numbers.
inline constexpr std::int32_t continueSignal = 19;
}  // namespace helper

/// The whole contract between the application and its root daemon. Each request is sent once and answered
/// once; there is no progress report and no cancellation. A request that does not reach the daemon is never
/// answered. Requests are made on the main thread and never block; an answer may come on any thread.
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

#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/UniqueFunction.h"
#include "contract/HelperProtocol.h"
#include "helper/HelperLink.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vorli {

/// The daemon's requests, each with a time limit and always with a result. The reply races the timer; exactly
/// one of them ends the call, and the other is ignored. A failing connection does not end a call: its timer
/// does. Main thread.
class HelperCalls {
 public:
  HelperCalls(Scheduler& scheduler, std::shared_ptr<HelperLink> link);

  Task<bool> ping(double limitSeconds);
  Task<std::string> version(double limitSeconds);
  Task<HelperReply> purgeMemory();
  Task<HelperReply> flushDNS();
  Task<HelperReply> killPID(std::int32_t pid, std::int32_t signal);
  Task<HelperReply> moveLaunchAgentPlist(std::string from, std::string to);

 private:
  /// One request's limit and texts. An empty log format means that nothing is logged.
  struct Request {
    double limitSeconds;
    std::string_view logRequested;
    std::string_view logNoProxy;
    std::string_view logTimeout;  // may contain the subject
    std::string_view logReply;    // contains the exit code and the output
    std::string_view timeoutOutput;
    std::int32_t subject = 0;
  };
  using Send = UniqueFunction<void(HelperProtocol&, OnceReply<HelperReply>)>;

  Task<HelperReply> perform(Request request, Send send);

  Scheduler& scheduler_;
  std::shared_ptr<HelperLink> link_;
};

}  // namespace vorli

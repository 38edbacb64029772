#include "helper/HelperCalls.h"

#include "base/DeadlineRace.h"
#include "helper/HelperLog.h"
#include "helper/HelperTimings.h"

#include <optional>
#include <utility>

namespace vorli {

namespace {

constexpr std::int32_t callFailed = -1;

}  // namespace

HelperCalls::HelperCalls(Scheduler& scheduler, std::shared_ptr<HelperLink> link)
    : scheduler_(scheduler), link_(std::move(link)) {}

Task<bool> HelperCalls::ping(double limitSeconds) {
  const auto proxy = link_->proxy();
  if (!proxy) co_return false;
  DeadlineRace<std::string> race(scheduler_, limitSeconds);
  proxy->ping(race.reply());
  const auto reply = co_await race;
  co_return reply.has_value();
}

Task<std::string> HelperCalls::version(double limitSeconds) {
  const auto proxy = link_->proxy();
  if (!proxy) co_return "unknown";
  DeadlineRace<std::string> race(scheduler_, limitSeconds);
  proxy->version(race.reply());
  auto reply = co_await race;
  co_return reply ? std::move(*reply) : "unknown";
}

Task<HelperReply> HelperCalls::purgeMemory() {
  constexpr Request request{
      .limitSeconds = HelperTimings::purgeMemory,
      .logRequested = "purgeMemory requested",
      .logNoProxy = "purgeMemory: no helper proxy available",
      .logTimeout = "purgeMemory: XPC reply timed out after 20s",
      .logReply = "purgeMemory reply: exit=%d output=%{public}s",
      .timeoutOutput = "Helper purgeMemory timed out",
  };
  return perform(request, [](HelperProtocol& daemon, OnceReply<HelperReply> reply) {
    daemon.purgeMemory(std::move(reply));
  });
}

Task<HelperReply> HelperCalls::flushDNS() {
  constexpr Request request{
      .limitSeconds = HelperTimings::flushDNS,
      .logRequested = "flushDNS requested",
      .logNoProxy = "flushDNS: no helper proxy available",
      .logTimeout = "flushDNS: XPC reply timed out after 5s",
      .logReply = "flushDNS reply: exit=%d output=%{public}s",
      .timeoutOutput = "Helper flushDNS timed out",
  };
  return perform(request, [](HelperProtocol& daemon, OnceReply<HelperReply> reply) {
    daemon.flushDNS(std::move(reply));
  });
}

Task<HelperReply> HelperCalls::killPID(std::int32_t pid, std::int32_t signal) {
  const Request request{
      .limitSeconds = HelperTimings::killPID,
      .logRequested = {},
      .logNoProxy = {},
      .logTimeout = "killPID: XPC reply timed out after 10s (pid=%d)",
      .logReply = {},
      .timeoutOutput = "Helper killPID timed out",
      .subject = pid,
  };
  return perform(request, [pid, signal](HelperProtocol& daemon, OnceReply<HelperReply> reply) {
    daemon.killPID(pid, signal, std::move(reply));
  });
}

Task<HelperReply> HelperCalls::moveLaunchAgentPlist(std::string from, std::string to) {
  constexpr Request request{
      .limitSeconds = HelperTimings::moveLaunchAgentPlist,
      .logRequested = {},
      .logNoProxy = {},
      .logTimeout = "moveLaunchAgentPlist: XPC reply timed out after 4s",
      .logReply = {},
      .timeoutOutput = "Helper moveLaunchAgentPlist timed out",
  };
  return perform(request, [from = std::move(from), to = std::move(to)](HelperProtocol& daemon,
                                                                       OnceReply<HelperReply> reply) mutable {
    daemon.moveLaunchAgentPlist(std::move(from), std::move(to), std::move(reply));
  });
}

Task<HelperReply> HelperCalls::perform(Request request, Send send) {
  if (!request.logRequested.empty()) helperLog.log(request.logRequested);
  const auto proxy = link_->proxy();
  if (!proxy) {
    if (!request.logNoProxy.empty()) helperLog.error(request.logNoProxy);
    co_return HelperReply{callFailed, "No helper connection"};
  }

  // The timer starts before the request is sent.
  DeadlineRace<HelperReply> race(scheduler_, request.limitSeconds);
  send(*proxy, race.reply());
  auto reply = co_await race;

  if (!reply) {
    helperLog.error(request.logTimeout, request.subject);
    co_return HelperReply{callFailed, std::string(request.timeoutOutput)};
  }
  if (!request.logReply.empty()) helperLog.log(request.logReply, reply->exitCode, reply->output);
  co_return std::move(*reply);
}

}  // namespace vorli

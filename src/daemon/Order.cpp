#include "daemon/Order.h"

#include <cerrno>

namespace vorli::daemon {

namespace {

// The contract's number for "continue"; on some systems the kernel's signal of that number stops a process.
// So no other number is accepted, and this one is never passed to the kernel.
std::expected<Order, HelperReply> decodeKill(const KillArguments& arguments) {
  if (arguments.signal != helper::continueSignal)
    return std::unexpected(HelperReply{EINVAL, "Only the continue signal (19) is delivered"});
  if (arguments.pid <= 1) return std::unexpected(HelperReply{EINVAL, "Not a process that can be continued"});
  return ContinueOrder{arguments.pid};
}

}  // namespace

std::expected<Order, HelperReply> decode(const Request& request) {
  switch (request.method) {
    case Method::purgeMemory:
      return PurgeOrder{};
    case Method::flushDNS:
      return FlushOrder{};
    case Method::dumpBTM:
      return DumpOrder{};
    case Method::killPID:
      if (const auto* arguments = std::get_if<KillArguments>(&request.arguments))
        return decodeKill(*arguments);
      break;
    case Method::moveLaunchAgentPlist:
      if (const auto* arguments = std::get_if<MoveArguments>(&request.arguments))
        return decodeMove(arguments->from, arguments->to);
      break;
  }
  return std::unexpected(HelperReply{EINVAL, "Arguments do not belong to the method"});
}

}  // namespace vorli::daemon

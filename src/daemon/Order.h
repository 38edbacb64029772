#pragma once

#include "daemon/MoveOrder.h"
#include "daemon/Request.h"
#include "helper/HelperProtocol.h"

#include <expected>
#include <variant>

namespace vorli::daemon {

struct PurgeOrder {};
struct FlushOrder {};
struct ContinueOrder {
  std::int32_t pid;
};
struct DumpOrder {};

/// A request whose arguments have passed every rule that can be told from them alone.
using Order = std::variant<PurgeOrder, FlushOrder, ContinueOrder, DumpOrder, MoveOrder>;

/// Error: the answer for the caller.
std::expected<Order, HelperReply> decode(const Request& request);

}  // namespace vorli::daemon

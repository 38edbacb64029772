#pragma once

#include "contract/HelperProtocol.h"
#include "daemon/MoveOrder.h"
#include "daemon/Request.h"

#include <expected>
#include <variant>

namespace vorli::daemon {

struct PurgeOrder {};
struct FlushOrder {};
struct ContinueOrder {
  std::int32_t pid;
};
struct DumpOrder {};

/// A request whose arguments have passed every check that needs only the arguments.
using Order = std::variant<PurgeOrder, FlushOrder, ContinueOrder, DumpOrder, MoveOrder>;

/// Checks a request's arguments. Error: the answer for the caller.
[[nodiscard]] std::expected<Order, HelperReply> decode(const Request& request);

}  // namespace vorli::daemon

#pragma once

#include "contract/HelperActions.h"
#include "contract/HelperMethods.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace vorli::daemon {

/// A user id as the bus reports it: 32 bits, unsigned; all values but the last are real users.
using UserId = std::uint32_t;

/// The methods that pass through the request desk. Ping and Version are answered before it.
enum class Method { purgeMemory, flushDNS, killPID, dumpBTM, moveLaunchAgentPlist };

struct MethodRules {
  std::string_view name;
  /// Action that polkit must grant; empty when the method needs no authorisation.
  std::string_view action;
  /// Longest time until the answer, however long the work takes; the application's own limit is longer.
  double deadlineSeconds;
};

constexpr MethodRules rulesOf(Method method) {
  switch (method) {
    case Method::purgeMemory:
      return {helper::method::purgeMemory, helper::action::purgeMemory, 18.0};
    case Method::flushDNS:
      return {helper::method::flushDNS, helper::action::flushDNS, 4.6};
    case Method::killPID:
      return {helper::method::killPID, "", 8.0};
    case Method::dumpBTM:
      return {helper::method::dumpBTM, "", 1.5};
    case Method::moveLaunchAgentPlist:
      return {helper::method::moveLaunchAgentPlist, helper::action::moveStartupItem, 3.8};
  }
  return {"", "", 0.0};
}

struct KillArguments {
  std::int32_t pid = 0;
  std::int32_t signal = 0;
};

struct MoveArguments {
  std::string from;
  std::string to;
};

/// One call as received from the bus. Held by value until it is answered, so that what was checked is what is
/// done.
struct Request {
  Method method;
  /// The caller's unique name on the bus.
  std::string caller;
  std::variant<std::monostate, KillArguments, MoveArguments> arguments;
};

}  // namespace vorli::daemon

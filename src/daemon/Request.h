#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace vorli::daemon {

/// As the bus tells it: 32 bits without a sign, all values but the last are real users.
using UserId = std::uint32_t;

/// The methods that pass through the request desk. Ping and Version are answered before it.
enum class Method { purgeMemory, flushDNS, killPID, dumpBTM, moveLaunchAgentPlist };

struct MethodRules {
  std::string_view name;
  /// What polkit is asked for; empty when the method needs no authorisation.
  std::string_view action;
  /// The answer is given within this time, whatever the work does; the application's own limit is later.
  double deadlineSeconds;
};

constexpr MethodRules rulesOf(Method method) {
  switch (method) {
    case Method::purgeMemory:
      return {"PurgeMemory", "com.kv.vorli.helper.purge-memory", 18.0};
    case Method::flushDNS:
      return {"FlushDNS", "com.kv.vorli.helper.flush-dns", 4.6};
    case Method::killPID:
      return {"KillPID", "", 8.0};
    case Method::dumpBTM:
      return {"DumpBTM", "", 1.5};
    case Method::moveLaunchAgentPlist:
      return {"MoveLaunchAgentPlist", "com.kv.vorli.helper.move-startup-item", 3.8};
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

/// One call as it came off the bus. Owned by value until it is answered: what was checked is what is done.
struct Request {
  Method method;
  /// The caller's unique name on the bus.
  std::string caller;
  std::variant<std::monostate, KillArguments, MoveArguments> arguments;
};

}  // namespace vorli::daemon

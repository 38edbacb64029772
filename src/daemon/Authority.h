#pragma once

#include "base/OnceReply.h"

#include <string>
#include <string_view>

namespace vorli::daemon {

/// Result of an authorisation check. `none`: the method needs no authorisation. `error`: no answer or an
/// invalid one, which counts as a refusal.
enum class Verdict { none, granted, authenticationNeeded, denied, error };

constexpr std::string_view nameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::none:
      return "none";
    case Verdict::granted:
      return "granted";
    case Verdict::authenticationNeeded:
      return "needed";
    case Verdict::denied:
      return "denied";
    case Verdict::error:
      return "error";
  }
  return "error";
}

/// Decides what a caller may do, by the system's policy. Never prompts the user.
class Authority {
 public:
  virtual ~Authority() = default;

  /// Checks whether `caller` may perform `action`. `subject` names the object of the action, for rules and
  /// logs; may be empty. Always answers, on the main thread, and never with `Verdict::none`.
  virtual void check(const std::string& caller, std::string_view action, const std::string& subject,
                     OnceReply<Verdict> reply) = 0;
};

}  // namespace vorli::daemon

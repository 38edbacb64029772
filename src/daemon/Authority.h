#pragma once

#include "base/OnceReply.h"

#include <string>
#include <string_view>

namespace vorli::daemon {

/// What became of the question whether a caller may. `none`: the method asks nobody. `error`: no answer, or
/// one that makes no sense, which is a refusal.
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

/// Decides what a caller may do, by the system's policy. Never asks the user for anything.
class Authority {
 public:
  virtual ~Authority() = default;

  /// `subject` is the name of what is acted on, for rules and logs; may be empty. Never answers
  /// `Verdict::none`. Answered on the main thread, in the end always.
  virtual void check(const std::string& caller, std::string_view action, const std::string& subject,
                     OnceReply<Verdict> reply) = 0;
};

}  // namespace vorli::daemon

#pragma once

#include "base/OnceReply.h"

#include <string>

namespace vorli::ports {

enum class UnitReply {
  done,
  refused,      // the user may not do it, or did not enter the password
  unavailable,  // no service manager answers, or it failed
};

/// The units of the system that packages installed, changed by the service manager itself: no file of a
/// package is touched. The system may ask the user for a password first. Main thread; no call blocks. The
/// reply comes on the main thread, after the user's answer if there is a prompt.
class SystemUnits {
 public:
  virtual ~SystemUnits() = default;

  /// Keeps everything from starting a unit, from the next start of the computer on. The links that enable the
  /// unit are kept.
  virtual void mask(const std::string& unit, OnceReply<UnitReply> reply) = 0;
  /// Undoes `mask`.
  virtual void unmask(const std::string& unit, OnceReply<UnitReply> reply) = 0;
};

}  // namespace vorli::ports

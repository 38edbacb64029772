#pragma once

#include "daemon/ExitCode.h"
#include "daemon/Request.h"

#include <array>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>

namespace vorli::daemon {

/// One process, held so that its number cannot pass to another unnoticed.
class PinnedProcess {
 public:
  virtual ~PinnedProcess() = default;

  /// Real, effective, saved and file system user of whatever bears the number now; nothing when they are
  /// hidden.
  virtual std::optional<std::array<UserId, 4>> users() = 0;
  /// False once the process has ended.
  virtual bool isThere() = 0;
  /// Lets a stopped process go on; does nothing to a running one.
  virtual std::expected<void, SystemError> resume() = 0;
};

/// Finds processes. Any thread; a call takes microseconds.
class ProcessControl {
 public:
  virtual ~ProcessControl() = default;

  virtual std::expected<std::unique_ptr<PinnedProcess>, SystemError> pin(std::int32_t pid) = 0;
};

}  // namespace vorli::daemon

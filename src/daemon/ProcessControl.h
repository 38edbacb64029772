#pragma once

#include "daemon/Request.h"
#include "daemon/SystemError.h"

#include <array>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>

namespace vorli::daemon {

/// One process, held so that a reuse of its number is noticed.
class PinnedProcess {
 public:
  virtual ~PinnedProcess() = default;

  /// Real, effective, saved and file system user of the process that has the number now; empty when they are
  /// hidden.
  virtual std::optional<std::array<UserId, 4>> users() = 0;
  /// False once the process has ended.
  virtual bool isThere() = 0;
  /// Resumes a stopped process; does nothing to a running one.
  [[nodiscard]] virtual std::expected<void, SystemError> resume() = 0;
};

/// Finds processes. Any thread; a call takes microseconds.
class ProcessControl {
 public:
  virtual ~ProcessControl() = default;

  [[nodiscard]] virtual std::expected<std::unique_ptr<PinnedProcess>, SystemError> pin(std::int32_t pid) = 0;
};

}  // namespace vorli::daemon

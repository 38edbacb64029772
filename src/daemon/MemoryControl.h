#pragma once

#include "daemon/SystemError.h"

#include <cstdint>
#include <expected>
#include <optional>

namespace vorli::daemon {

struct MemoryReading {
  std::uint64_t freeBytes = 0;
  std::uint64_t availableBytes = 0;
  /// Pages of files, including buffers.
  std::uint64_t pageCacheBytes = 0;
  std::uint64_t reclaimableSlabBytes = 0;
};

/// The kernel's controls for its caches. Every call blocks; never call on the main thread.
class MemoryControl {
 public:
  virtual ~MemoryControl() = default;

  /// Empty when it cannot be read.
  virtual std::optional<MemoryReading> read() = 0;
  /// Writes unsaved data to disk. False when that takes longer than `seconds`; it then continues in the
  /// background.
  virtual bool syncWithin(double seconds) = 0;
  [[nodiscard]] virtual std::expected<void, SystemError> dropPageCache() = 0;
  [[nodiscard]] virtual std::expected<void, SystemError> dropSlab() = 0;
  [[nodiscard]] virtual std::expected<void, SystemError> compact() = 0;
};

}  // namespace vorli::daemon

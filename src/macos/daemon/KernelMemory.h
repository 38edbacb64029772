#pragma once

#include "daemon/MemoryControl.h"

#include <dispatch/dispatch.h>
#include <mach/mach.h>

namespace vorli::machost {

/// Reads the kernel's memory figures, and empties the file cache with the system's own tool.
class KernelMemory final : public daemon::MemoryControl {
 public:
  KernelMemory();
  ~KernelMemory() override;
  KernelMemory(const KernelMemory&) = delete;
  KernelMemory& operator=(const KernelMemory&) = delete;

  std::optional<daemon::MemoryReading> read() override;
  bool syncWithin(double seconds) override;
  /// Error: the tool's exit status and text.
  [[nodiscard]] std::expected<void, daemon::SystemError> dropPageCache() override;
  /// Does nothing: this kernel has no such cache to drop, and `read` reports its size as 0.
  [[nodiscard]] std::expected<void, daemon::SystemError> dropSlab() override { return {}; }
  /// Does nothing: this kernel compacts by itself.
  [[nodiscard]] std::expected<void, daemon::SystemError> compact() override { return {}; }

 private:
  const mach_port_t host_;
  /// Holds the write-back that is still running.
  const dispatch_group_t sync_;
};

}  // namespace vorli::machost

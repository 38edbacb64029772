#pragma once

#include "daemon/MemoryControl.h"

#include <memory>

namespace vorli::linuxhost {

/// The levers in /proc.
class KernelMemory final : public daemon::MemoryControl {
 public:
  static constexpr char dropCachesPath[] = "/proc/sys/vm/drop_caches";
  static constexpr char compactPath[] = "/proc/sys/vm/compact_memory";

  KernelMemory();

  std::optional<daemon::MemoryReading> read() override;
  bool syncWithin(double seconds) override;
  std::expected<void, daemon::SystemError> dropPageCache() override;
  std::expected<void, daemon::SystemError> dropSlab() override;
  std::expected<void, daemon::SystemError> compact() override;

 private:
  struct Sync;

  std::shared_ptr<Sync> sync_;
};

}  // namespace vorli::linuxhost

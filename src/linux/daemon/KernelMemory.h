#pragma once

#include "daemon/MemoryControl.h"
#include "linux/daemon/FileDescriptor.h"

#include <memory>

namespace vorli::linuxhost {

/// The two levers in /proc, opened before the process is confined and kept open: dropping the kernel's caches
/// also drops its record of these files, and the confinement does not know the new one.
struct MemoryLevers {
  FileDescriptor dropCaches;
  FileDescriptor compact;

  /// A lever that cannot be opened is told when it is pulled.
  static MemoryLevers take();
};

/// The kernel's memory as /proc shows and moves it.
class KernelMemory final : public daemon::MemoryControl {
 public:
  explicit KernelMemory(MemoryLevers levers);

  std::optional<daemon::MemoryReading> read() override;
  bool syncWithin(double seconds) override;
  std::expected<void, daemon::SystemError> dropPageCache() override;
  std::expected<void, daemon::SystemError> dropSlab() override;
  std::expected<void, daemon::SystemError> compact() override;

 private:
  struct Sync;

  MemoryLevers levers_;
  std::shared_ptr<Sync> sync_;
};

}  // namespace vorli::linuxhost

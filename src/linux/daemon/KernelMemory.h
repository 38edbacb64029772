#pragma once

#include "daemon/MemoryControl.h"
#include "posix/FileDescriptor.h"

#include <memory>
#include <string_view>

namespace vorli::linuxhost {

/// A kernel file to write a number to. A failure to open it is returned by `pull`.
class MemoryLever {
 public:
  explicit MemoryLever(const char* path);

  [[nodiscard]] std::expected<void, daemon::SystemError> pull(std::string_view value) const;

 private:
  posix::FileDescriptor file_;
  int error_ = 0;
};

/// The two levers in /proc, opened before the process is confined and kept open: dropping the kernel's caches
/// also drops its record of these files, and the confinement would not recognise the new one.
struct MemoryLevers {
  MemoryLever dropCaches{"/proc/sys/vm/drop_caches"};
  MemoryLever compact{"/proc/sys/vm/compact_memory"};
};

/// Reads the kernel's memory figures and reclaims memory, through /proc.
class KernelMemory final : public daemon::MemoryControl {
 public:
  explicit KernelMemory(MemoryLevers levers);

  std::optional<daemon::MemoryReading> read() override;
  bool syncWithin(double seconds) override;
  [[nodiscard]] std::expected<void, daemon::SystemError> dropPageCache() override;
  [[nodiscard]] std::expected<void, daemon::SystemError> dropSlab() override;
  [[nodiscard]] std::expected<void, daemon::SystemError> compact() override;

 private:
  struct Sync;

  MemoryLevers levers_;
  std::shared_ptr<Sync> sync_;
};

}  // namespace vorli::linuxhost

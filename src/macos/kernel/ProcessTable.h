#pragma once

#include "ports/ProcessTable.h"

#include <array>
#include <libproc.h>

namespace vorli::machost {

/// The kernel's own table of processes. Its times are in Mach units, and all its figures are exact.
class ProcessTable final : public ports::ProcessTable {
 public:
  ports::Timebase timebase() override;

  /// Returns the number of processes for a filled buffer, like the kernel's library, not the number of bytes.
  int listAllPIDs(std::span<std::int32_t> buffer) override;
  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override;
  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override;
  const std::optional<SharedText>& executablePath(std::int32_t pid) override;
  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override;

 private:
  proc_bsdinfo identity_{};  // contains the name that the last reading returned
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> pathBuffer_{};
  std::optional<SharedText> path_;
};

}  // namespace vorli::machost

#pragma once

#include "base/SharedText.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vorli::ports {

/// Resources of one process. Times are in the table's own units, see `timebase`.
struct ProcessTaskInfo {
  std::uint64_t residentBytes = 0;
  std::uint64_t totalUser = 0;
  std::uint64_t totalSystem = 0;
};

/// Identity of one process.
struct ProcessBSDInfo {
  std::int64_t parentPID = 0;
  /// Start time in whole seconds since 1970, by the calendar as it stands now.
  std::int64_t startSeconds = 0;
  /// Short name as the kernel has it: any bytes, no valid UTF-8 promised, possibly empty. Held by the table
  /// until another process is asked for.
  std::string_view name;
};

/// A count of time units times `numer` divided by `denom` is nanoseconds.
struct Timebase {
  std::uint32_t numer = 1;
  std::uint32_t denom = 1;
};

/// The table of all processes. The reads are asked in the order listing, then `readTaskInfo`, `readBSDInfo`
/// and `executablePath` for one process after another, and may share one look at the kernel for a process.
/// Main thread, or one worker at a time; blocks for some microseconds per process.
class ProcessTable {
 public:
  virtual ~ProcessTable() = default;

  virtual Timebase timebase() = 0;

  /// With an empty buffer: the number of slots to provide. Otherwise fills the buffer with process
  /// identifiers, in the kernel's order, and returns the number of BYTES written. Under 1 when the listing
  /// failed.
  virtual int listAllPIDs(std::span<std::int32_t> buffer) = 0;

  /// False when the process is gone or may not be read.
  virtual bool readTaskInfo(std::int32_t pid, ProcessTaskInfo& info) = 0;
  virtual bool readBSDInfo(std::int32_t pid, ProcessBSDInfo& info) = 0;

  /// Path of the program file, with invalid UTF-8 repaired. Empty when there is none or it may not be read.
  /// Held by the table until another process is asked for.
  virtual const std::optional<SharedText>& executablePath(std::int32_t pid) = 0;

  /// The resident size where the one of `readTaskInfo` is an estimate. Empty when that one is exact already,
  /// or the process is gone.
  virtual std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) = 0;
};

}  // namespace vorli::ports

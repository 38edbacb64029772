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
  /// Start time in whole seconds since 1970, by the calendar clock as set now.
  std::int64_t startSeconds = 0;
  /// Short name from the kernel: any bytes, not necessarily valid UTF-8, possibly empty. Valid until another
  /// process is read.
  std::string_view name;
};

/// Converts time units to nanoseconds: multiply by `numer`, then divide by `denom`.
struct Timebase {
  std::uint32_t numer = 1;
  std::uint32_t denom = 1;
};

/// The table of all processes. First call `listAllPIDs`, then `readTaskInfo`, `readBSDInfo` and
/// `executablePath` in this order for one process after another; the calls for one process may share a single
/// kernel read. Main thread, or one worker at a time; blocks for some microseconds per process.
class ProcessTable {
 public:
  virtual ~ProcessTable() = default;

  virtual Timebase timebase() = 0;

  /// With an empty buffer, returns the number of slots to provide. Otherwise fills the buffer with process
  /// identifiers in the kernel's order and returns the number of BYTES written. Below 1 when the listing
  /// failed.
  virtual int listAllPIDs(std::span<std::int32_t> buffer) = 0;

  /// False when the process has ended or may not be read.
  virtual bool readTaskInfo(std::int32_t pid, ProcessTaskInfo& info) = 0;
  virtual bool readBSDInfo(std::int32_t pid, ProcessBSDInfo& info) = 0;

  /// Path of the program file, with invalid UTF-8 repaired. Empty when there is none or it may not be read.
  /// Valid until another process is read.
  virtual const std::optional<SharedText>& executablePath(std::int32_t pid) = 0;

  /// The exact resident size where `readTaskInfo` returns an estimate. Empty when that value is already exact
  /// or the process has ended.
  virtual std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) = 0;
};

}  // namespace vorli::ports

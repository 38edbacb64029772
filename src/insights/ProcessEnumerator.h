#pragma once

#include "base/Date.h"
#include "insights/ProcessSnapshot.h"
#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/ProcessTable.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace vorli {

/// Looks at every process once per sampling pass. Its only memory is each process's CPU counter and the time
/// of the last pass, which turn cumulative time into a fraction. One pass at a time.
class ProcessEnumerator {
 public:
  ProcessEnumerator(ports::ProcessTable& table, ports::Workspace& workspace, ports::CPUCounters& processors,
                    const ports::CalendarClock& calendar);

  /// One row for each process that can be read, in the kernel's order. CPU fractions are 0 in the first pass,
  /// and for a process's first pass. Empty when the listing failed.
  std::vector<ProcessSnapshot> enumerate();

 private:
  std::vector<std::int32_t> listPIDs();

  ports::ProcessTable& table_;
  ports::Workspace& workspace_;
  ports::CPUCounters& processors_;
  const ports::CalendarClock& calendar_;
  const ports::Timebase timebase_;
  std::unordered_map<std::int32_t, std::uint64_t> previousCPUTime_;
  std::optional<Date> previousSampleAt_;
};

}  // namespace vorli

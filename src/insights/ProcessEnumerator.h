#pragma once

#include "base/Date.h"
#include "insights/LargestRows.h"
#include "insights/PIDMap.h"
#include "insights/ProcessSnapshot.h"
#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/ProcessTable.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vorli {

/// Reads every process once per sampling pass. Between passes it keeps each process's CPU counter and the
/// time of the last pass, to turn cumulative time into a fraction; all else that it keeps is reused memory.
/// One pass at a time.
class ProcessEnumerator {
 public:
  ProcessEnumerator(ports::ProcessTable& table, ports::Workspace& workspace, ports::CPUCounters& processors,
                    const ports::CalendarClock& calendar);

  /// One row for each process that can be read, in the kernel's order. CPU fractions are 0 in the first pass,
  /// and in the first pass of each process. Empty when the listing failed. The rows are overwritten by the
  /// next pass. Main thread.
  const std::vector<ProcessSnapshot>& enumerate();

  /// The two halves of `enumerate`, for a pass that would block the main thread. Call `prepare` on the main
  /// thread, then `readProcesses` on any thread.
  void prepare();
  const std::vector<ProcessSnapshot>& readProcesses();

 private:
  struct Pass {
    Date now;
    double elapsedSeconds;
  };

  std::span<const std::int32_t> listPIDs();
  void mapApplications();
  bool readProcess(std::int32_t pid);
  double cpuFraction(std::int32_t pid, std::uint64_t total, const Pass& pass) const;
  void fillRow(ProcessSnapshot& row, std::int32_t pid, double cpuFraction, const Pass& pass);
  ProcessSnapshot& nextRow();
  void refineLargestRows();

  ports::ProcessTable& table_;
  ports::Workspace& workspace_;
  ports::CPUCounters& processors_;
  const ports::CalendarClock& calendar_;
  const ports::Timebase timebase_;

  PIDMap<std::uint64_t> previousCPUTime_;  // in the units of the timebase
  std::optional<Date> previousSampleAt_;

  // Reused by each pass.
  std::vector<ports::RunningApplication> applications_;  // the workspace's own list may change during a pass
  double processorCount_ = 0.0;
  std::vector<std::int32_t> pids_;
  PIDMap<std::uint64_t> cpuTime_;
  PIDMap<const ports::RunningApplication*> applicationsByPID_;  // into `applications_`
  ports::ProcessTaskInfo taskInfo_;
  ports::ProcessBSDInfo bsdInfo_;
  std::vector<ProcessSnapshot> rows_;
  std::size_t rowCount_ = 0;
  LargestRows largestRows_;
};

}  // namespace vorli

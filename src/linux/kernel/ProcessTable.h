#pragma once

#include "formats/ProcStat.h"
#include "linux/applications/ProgramPaths.h"
#include "linux/kernel/KeptFile.h"
#include "linux/kernel/ResidentSizes.h"
#include "ports/CalendarClock.h"
#include "ports/ProcessTable.h"
#include "posix/FileDescriptor.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The processes in /proc. One reading of PID/stat serves all calls for a process in a pass, until a call for
/// another process.
class ProcessTable final : public ports::ProcessTable {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit ProcessTable(const ports::CalendarClock& calendar, const std::string& root = "");

  ports::Timebase timebase() override;
  int listAllPIDs(std::span<std::int32_t> buffer) override;
  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override;
  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override;
  const std::optional<SharedText>& executablePath(std::int32_t pid) override;
  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override;

 private:
  bool openFolder();
  bool readListing();
  bool readFolder();
  void addListed(std::span<const char> entries);
  bool readStat(std::int32_t pid);
  bool hasStat(std::int32_t pid);
  void findBootMoment();
  bool isEstimating();

  const ports::CalendarClock& calendar_;
  const std::string folderPath_;
  const std::uint64_t pageSizeBytes_;
  const std::uint64_t ticksPerSecond_;
  posix::FileDescriptor folder_;
  KeptFile uptime_;
  KeptFile release_;
  ProgramPaths programPaths_;
  ResidentSizes residentSizes_;
  std::optional<bool> isEstimating_;

  std::unique_ptr<char[]> entryBuffer_;
  std::vector<std::int32_t> listed_;
  bool isListed_ = false;    // `listed_` has not been returned yet
  double bootMoment_ = 0.0;  // seconds since 1970

  std::int32_t statPID_ = 0;  // the process that `stat_` describes; 0 for none
  formats::ProcStat stat_;    // its name points into `statBuffer_`
  std::array<char, 1024> statBuffer_;
};

}  // namespace vorli::linuxhost

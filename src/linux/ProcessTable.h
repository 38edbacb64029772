#pragma once

#include "linux/KeptFile.h"
#include "linux/ProcStat.h"
#include "linux/ProgramPaths.h"
#include "linux/ResidentSizes.h"
#include "ports/CalendarClock.h"
#include "ports/ProcessTable.h"
#include "posix/FileDescriptor.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The processes of /proc: one reading of PID/stat serves all that is asked of a process in a pass, until the
/// next process is asked for.
class ProcessTable final : public ports::ProcessTable {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
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
  bool isListed_ = false;    // `listed_` waits to be handed out
  double bootMoment_ = 0.0;  // seconds since 1970

  std::int32_t statPID_ = 0;  // whose `stat_` is; 0 when nobody's
  ProcStat stat_;             // its name lies in `statBuffer_`
  std::array<char, 1024> statBuffer_;
};

}  // namespace vorli::linuxhost

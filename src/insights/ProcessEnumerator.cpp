#include "insights/ProcessEnumerator.h"

#include "base/Assert.h"
#include "base/UTF8.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vorli {

namespace {

constexpr int bytesPerPID = 4;
constexpr double nanosecondsPerSecond = 1'000'000'000.0;

// Resident sizes of a pass can be estimates that are some MiB too low. Exact sizes are read for this many of
// the largest processes, well above what any list or threshold needs.
constexpr std::size_t exactRows = 32;

// The name up to its first NUL; empty when it is not all readable text.
std::string_view readableName(std::string_view bytes) {
  const auto name = bytes.substr(0, bytes.find('\0'));
  if (isASCII(name)) return name;
  if (!isUTF8(name) || name.contains(replacementCharacter)) return {};
  return name;
}

// Most rows hold the same process as in the previous pass, and comparing costs half as much as copying.
void setText(std::string& text, std::string_view value) {
  if (text != value) text = value;
}

}  // namespace

ProcessEnumerator::ProcessEnumerator(ports::ProcessTable& table, ports::Workspace& workspace,
                                     ports::CPUCounters& processors, const ports::CalendarClock& calendar)
    : table_(table),
      workspace_(workspace),
      processors_(processors),
      calendar_(calendar),
      timebase_(table.timebase()) {}

const std::vector<ProcessSnapshot>& ProcessEnumerator::enumerate() {
  prepare();
  return readProcesses();
}

void ProcessEnumerator::prepare() {
  applications_ = workspace_.runningApplications();
  processorCount_ = static_cast<double>(processors_.processorCount());
  mapApplications();
}

const std::vector<ProcessSnapshot>& ProcessEnumerator::readProcesses() {
  const auto pids = listPIDs();
  const Date now = calendar_.now();
  const double elapsed = previousSampleAt_ ? now - *previousSampleAt_ : 0.0;
  const Pass pass{now, elapsed};

  cpuTime_.reset(pids.size());
  rowCount_ = 0;
  for (const std::int32_t pid : pids) {
    if (pid < 1 || !readProcess(pid)) continue;
    std::uint64_t total = 0;
    VORLI_ASSERT(!__builtin_add_overflow(taskInfo_.totalUser, taskInfo_.totalSystem, &total));
    cpuTime_.set(pid, total);
    fillRow(nextRow(), pid, cpuFraction(pid, total, pass), pass);
  }
  rows_.resize(rowCount_);
  refineLargestRows();

  std::swap(previousCPUTime_, cpuTime_);
  previousSampleAt_ = now;
  return rows_;
}

std::span<const std::int32_t> ProcessEnumerator::listPIDs() {
  const int slots = table_.listAllPIDs({});
  if (slots < 1) return {};
  pids_.assign(static_cast<std::size_t>(slots), 0);
  const int written = table_.listAllPIDs(pids_);
  if (written < 1) return {};
  return {pids_.data(), static_cast<std::size_t>(std::min(written / bytesPerPID, slots))};
}

void ProcessEnumerator::mapApplications() {
  applicationsByPID_.reset(applications_.size());
  for (const auto& application : applications_) {
    if (application.processIdentifier > 0) {
      applicationsByPID_.set(application.processIdentifier, &application);
    }
  }
}

// Succeeds only when both reads do; skips a process that has ended or may not be read.
bool ProcessEnumerator::readProcess(std::int32_t pid) {
  return table_.readTaskInfo(pid, taskInfo_) && table_.readBSDInfo(pid, bsdInfo_);
}

// CPU use in cores. The difference wraps around, so a counter that ran backwards reads as full use.
double ProcessEnumerator::cpuFraction(std::int32_t pid, std::uint64_t total, const Pass& pass) const {
  const std::uint64_t* previous = previousCPUTime_.find(pid);
  if (!previous || !(pass.elapsedSeconds > 0.0)) return 0.0;
  const double cpu = static_cast<double>(total - *previous) * timebase_.numer / timebase_.denom /
                     nanosecondsPerSecond / pass.elapsedSeconds;
  return cpu > 0.0 ? std::min(cpu, processorCount_) : 0.0;
}

void ProcessEnumerator::fillRow(ProcessSnapshot& row, std::int32_t pid, double cpuFraction,
                                const Pass& pass) {
  VORLI_ASSERT(std::in_range<std::int32_t>(bsdInfo_.parentPID));
  const auto* const* found = applicationsByPID_.find(pid);
  const ports::RunningApplication* application = found ? *found : nullptr;
  const auto name = readableName(bsdInfo_.name);

  row.id = pid;
  row.parentPID = static_cast<std::int32_t>(bsdInfo_.parentPID);
  setText(row.name, name);
  if (const auto& path = table_.executablePath(pid); row.executablePath != path) row.executablePath = path;
  row.residentBytes = taskInfo_.residentBytes;
  row.cpuFraction = cpuFraction;
  row.uptime = std::max(pass.now - Date{static_cast<double>(bsdInfo_.startSeconds)}, 0.0);
  setText(row.displayName,
          application && application->localizedName ? application->localizedName->view() : name);
  if (application) {
    row.bundleIdentifier = application->bundleIdentifier;
    row.activationPolicy = application->activationPolicy;
    row.appIcon = application->icon;
  } else {
    row.bundleIdentifier.reset();
    row.activationPolicy.reset();
    row.appIcon.reset();
  }
  if (row.name.empty() && application && application->localizedName) row.name = row.displayName;
  if (row.name.empty()) row.name = "pid " + std::to_string(pid);
}

// The next free row of this pass. Overwriting its old content reuses the memory.
ProcessSnapshot& ProcessEnumerator::nextRow() {
  if (rowCount_ == rows_.size()) rows_.emplace_back();
  return rows_[rowCount_++];
}

void ProcessEnumerator::refineLargestRows() {
  for (const auto index : largestRows_.find(rows_, exactRows, &ProcessSnapshot::residentBytes)) {
    ProcessSnapshot& row = rows_[index];
    if (const auto exact = table_.exactResidentBytes(row.id)) row.residentBytes = *exact;
  }
}

}  // namespace vorli

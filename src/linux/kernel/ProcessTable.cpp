#include "linux/kernel/ProcessTable.h"

#include "formats/KernelRelease.h"
#include "formats/KernelText.h"
#include "formats/ProcessorTimes.h"
#include "linux/kernel/ProcPath.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t entryBufferBytes = 64 * 1024;
constexpr int bytesPerPID = 4;

// Since this release the size in PID/stat is only a rough sum of per-processor counters.
constexpr formats::KernelRelease firstEstimating{6, 2};

// Parses the name of a process's folder; 0 for any other name.
std::int32_t pidOf(const char* name) {
  if (*name == '0') return 0;
  std::int64_t pid = 0;
  for (; *name != '\0'; ++name) {
    const unsigned digit = static_cast<unsigned char>(*name) - unsigned{'0'};
    if (digit > 9) return 0;
    pid = pid * 10 + digit;
    if (pid > std::numeric_limits<std::int32_t>::max()) return 0;
  }
  return static_cast<std::int32_t>(pid);
}

}  // namespace

ProcessTable::ProcessTable(const ports::CalendarClock& calendar, const std::string& root)
    : calendar_(calendar),
      folderPath_(root + "/proc"),
      pageSizeBytes_(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      ticksPerSecond_(static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK))),
      uptime_(root + "/proc/uptime"),
      release_(root + "/proc/sys/kernel/osrelease"),
      programPaths_(root),
      entryBuffer_(std::make_unique_for_overwrite<char[]>(entryBufferBytes)) {}

ports::Timebase ProcessTable::timebase() {
  return {1'000'000'000, static_cast<std::uint32_t>(ticksPerSecond_)};
}

int ProcessTable::listAllPIDs(std::span<std::int32_t> buffer) {
  if (buffer.empty() || !isListed_) {
    isListed_ = readListing();
    if (!isListed_) return -1;
  }
  if (buffer.empty()) return static_cast<int>(listed_.size());
  isListed_ = false;
  const auto count = std::min(buffer.size(), listed_.size());
  std::copy_n(listed_.begin(), count, buffer.begin());
  return static_cast<int>(count) * bytesPerPID;
}

bool ProcessTable::readListing() {
  statPID_ = 0;
  if (!readFolder()) {
    folder_.reset();
    if (!readFolder()) return false;
  }
  // The kernel's own listing is already sorted; that of a recorded tree may not be.
  if (!std::ranges::is_sorted(listed_)) std::ranges::sort(listed_);
  programPaths_.keepOnly(listed_);
  residentSizes_.beginPass();
  findBootMoment();
  return true;
}

bool ProcessTable::readFolder() {
  listed_.clear();
  if (!openFolder() || lseek(folder_.get(), 0, SEEK_SET) != 0) return false;
  ssize_t length = 0;
  while ((length = getdents64(folder_.get(), entryBuffer_.get(), entryBufferBytes)) > 0) {
    addListed({entryBuffer_.get(), static_cast<std::size_t>(length)});
  }
  return length == 0;
}

bool ProcessTable::openFolder() {
  if (!folder_)
    folder_ = posix::FileDescriptor(open(folderPath_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return static_cast<bool>(folder_);
}

void ProcessTable::addListed(std::span<const char> entries) {
  constexpr auto lengthAt = offsetof(dirent64, d_reclen);
  constexpr auto nameAt = offsetof(dirent64, d_name);
  while (!entries.empty()) {
    if (const auto pid = pidOf(entries.data() + nameAt)) listed_.push_back(pid);
    std::uint16_t length = 0;
    std::memcpy(&length, entries.data() + lengthAt, sizeof length);
    entries = entries.subspan(length);
  }
}

bool ProcessTable::readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) {
  if (!readStat(pid)) return false;
  info.residentBytes = stat_.residentPages * pageSizeBytes_;
  info.totalUser = stat_.userTicks;
  info.totalSystem = stat_.systemTicks;
  return true;
}

bool ProcessTable::readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) {
  if (!hasStat(pid)) return false;
  info.parentPID = stat_.parentPID;
  const double start =
      bootMoment_ + static_cast<double>(stat_.startTicks) / static_cast<double>(ticksPerSecond_);
  info.startSeconds = static_cast<std::int64_t>(start);
  info.name = stat_.name;
  return true;
}

const std::optional<SharedText>& ProcessTable::executablePath(std::int32_t pid) {
  static const std::optional<SharedText> none;
  // Kernel threads have no program, and there are many of them. Their names change with their work.
  if (!hasStat(pid) || !stat_.hasMemory) return none;
  return programPaths_.find({pid, stat_.startTicks, stat_.name}, folder_.get());
}

std::optional<std::uint64_t> ProcessTable::exactResidentBytes(std::int32_t pid) {
  if (!isEstimating() || !openFolder()) return std::nullopt;
  const auto pages = residentSizes_.readPages(pid, folder_.get());
  if (!pages) return std::nullopt;
  return *pages * pageSizeBytes_;
}

bool ProcessTable::hasStat(std::int32_t pid) {
  return (pid != 0 && statPID_ == pid) || readStat(pid);
}

bool ProcessTable::readStat(std::int32_t pid) {
  statPID_ = 0;
  if (!openFolder()) return false;
  const posix::FileDescriptor file(
      openat(folder_.get(), ProcPath(pid, "stat").text(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file) return false;
  const ssize_t length = read(file.get(), statBuffer_.data(), statBuffer_.size());
  if (length < 1) return false;
  const auto stat = formats::parseProcStat({statBuffer_.data(), static_cast<std::size_t>(length)});
  if (!stat) return false;
  stat_ = *stat;
  statPID_ = pid;
  return true;
}

// Determines the time of boot by the current calendar. Two readings differ by hundredths of a second, so the
// stored time is replaced only when the clock was set; otherwise start times would flicker between two
// seconds. Without an uptime every process counts as just started.
void ProcessTable::findBootMoment() {
  constexpr double clockWasSet = 0.5;
  std::array<char, 128> buffer;
  const double uptime = formats::parseUptime(uptime_.read(buffer).value_or("")).value_or(0.0);
  const double moment = (calendar_.now() - Date{}) - uptime;
  if (std::abs(moment - bootMoment_) > clockWasSet) bootMoment_ = moment;
}

bool ProcessTable::isEstimating() {
  if (!isEstimating_) {
    std::array<char, 256> buffer;
    const auto release = formats::parseKernelRelease(release_.read(buffer).value_or(""));
    isEstimating_ = !release || *release >= firstEstimating;
  }
  return *isEstimating_;
}

}  // namespace vorli::linuxhost

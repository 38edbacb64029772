#include "linux/kernel/CPUCounters.h"

#include "formats/KernelText.h"
#include "formats/ProcessorTimes.h"

#include <array>

namespace vorli::linuxhost {

namespace {

int readCount(KeptFile& file) {
  std::array<char, 1024> buffer;
  return formats::parseProcessorCount(file.read(buffer).value_or("")).value_or(0);
}

}  // namespace

CPUCounters::CPUCounters(const std::string& root)
    : stat_(root + "/proc/stat"),
      loadAverages_(root + "/proc/loadavg"),
      online_(root + "/sys/devices/system/cpu/online"),
      present_(root + "/sys/devices/system/cpu/present") {}

std::optional<ports::CPUTicks> CPUCounters::readTicks() {
  std::array<char, 512> buffer;  // only the first line is wanted; the file grows with each interrupt source
  const auto times = formats::parseProcessorTimes(stat_.read(buffer).value_or(""));
  if (!times) return std::nullopt;
  ports::CPUTicks ticks;
  ticks.user = static_cast<std::uint32_t>(times->user);
  ticks.nice = static_cast<std::uint32_t>(times->nice);
  ticks.system = static_cast<std::uint32_t>(times->system + times->interrupt + times->softInterrupt);
  // Time stolen by a hypervisor is left out: this machine could not use it.
  ticks.idle = static_cast<std::uint32_t>(idleTicks(times->idle + times->inputOutputWait));
  return ticks;
}

// The kernel moves time between its two idle counters, and reports another counter for a processor that is
// taken offline, so the sum may run back. Counting only its growth keeps a small step back from looking like
// an overflow.
std::uint64_t CPUCounters::idleTicks(std::uint64_t reported) {
  if (!reportedIdle_) {
    idle_ = reported;
  } else if (reported > *reportedIdle_) {
    idle_ += reported - *reportedIdle_;
  }
  reportedIdle_ = reported;
  return idle_;
}

void CPUCounters::readLoadAverages(std::span<double, 3> averages) {
  std::array<char, 128> buffer;
  auto text = loadAverages_.read(buffer).value_or("");
  for (double& average : averages) {
    const auto value = formats::parseDecimal(formats::takeWord(text));
    if (!value) return;
    average = *value;
  }
}

int CPUCounters::activeProcessorCount() {
  return readCount(online_);
}

int CPUCounters::processorCount() {
  if (presentCount_ == 0) presentCount_ = readCount(present_);
  return presentCount_;
}

}  // namespace vorli::linuxhost

#include "linux/CPUCounters.h"

#include "linux/KernelText.h"
#include "linux/ProcessorTimes.h"

#include <array>

namespace vorli::linuxhost {

namespace {

int readCount(KeptFile& file) {
  std::array<char, 1024> buffer;
  return parseProcessorCount(file.read(buffer).value_or("")).value_or(0);
}

}  // namespace

CPUCounters::CPUCounters(const std::string& root)
    : stat_(root + "/proc/stat"),
      loadAverages_(root + "/proc/loadavg"),
      online_(root + "/sys/devices/system/cpu/online"),
      present_(root + "/sys/devices/system/cpu/present") {}

std::optional<ports::CPUTicks> CPUCounters::readTicks() {
  std::array<char, 512> buffer;  // only the first line is wanted; the file grows with each interrupt source
  const auto times = parseProcessorTimes(stat_.read(buffer).value_or(""));
  if (!times) return std::nullopt;
  ports::CPUTicks ticks;
  ticks.user = static_cast<std::uint32_t>(times->user);
  ticks.nice = static_cast<std::uint32_t>(times->nice);
  ticks.system = static_cast<std::uint32_t>(times->system + times->interrupt + times->softInterrupt);
  // The kernel moves time from one of these to the other afterwards, so that waiting alone can run
  // backwards; their sum does not. Time stolen by a hypervisor is left out: it was not ours to use.
  ticks.idle = static_cast<std::uint32_t>(times->idle + times->inputOutputWait);
  return ticks;
}

void CPUCounters::readLoadAverages(std::span<double, 3> averages) {
  std::array<char, 128> buffer;
  auto text = loadAverages_.read(buffer).value_or("");
  for (double& average : averages) {
    const auto value = parseDecimal(takeWord(text));
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

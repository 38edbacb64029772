// The program with its counters recorded: every raw reading is written to a file, one JSON object for each
// tick, with the ring that the program computed. `ring_trace.py` computes the ring again from the readings.

#include "app/Services.h"
#include "main/LinuxProgram.h"
#include "sampling/SystemMonitor.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace vorli {
namespace {

// The readings of the current tick.
struct Tick {
  Date memoryAt;
  std::optional<ports::VMStatistics> statistics;
  std::uint64_t physicalMemory = 0;
  ports::PressureReading pressure;
  std::optional<ports::CPUTicks> cpu;
  std::array<double, 3> load{};
  int cores = 0;
  ports::ThermalReading thermal;
} tick;

struct TappedCalendar final : ports::CalendarClock {
  explicit TappedCalendar(std::unique_ptr<ports::CalendarClock> real) : real(std::move(real)) {}
  Date now() const override {
    const Date date = real->now();
    // The memory sample takes its time between its own reading and the next one.
    if (std::exchange(isMemorySample, false)) tick.memoryAt = date;
    return date;
  }
  int localHour() const override { return real->localHour(); }
  ports::LocalTime localTime(Date date) const override { return real->localTime(date); }
  std::unique_ptr<ports::CalendarClock> real;
  static inline bool isMemorySample = false;
};

struct TappedMemory final : ports::MemoryCounters {
  explicit TappedMemory(std::unique_ptr<ports::MemoryCounters> real) : real(std::move(real)) {}
  std::uint64_t pageSizeBytes() override { return real->pageSizeBytes(); }
  std::optional<ports::VMStatistics> readStatistics() override {
    return tick.statistics = real->readStatistics();
  }
  std::uint64_t physicalMemoryBytes() override { return tick.physicalMemory = real->physicalMemoryBytes(); }
  std::optional<ports::SwapUsage> readSwapUsage() override { return real->readSwapUsage(); }
  ports::PressureReading readPressure() override {
    TappedCalendar::isMemorySample = true;
    return tick.pressure = real->readPressure();
  }
  std::unique_ptr<ports::MemoryCounters> real;
};

/// Subtracts the part of the initial load that exceeds the number of processors; otherwise a busy machine's
/// ring would be full and never change.
struct TappedCPU final : ports::CPUCounters {
  explicit TappedCPU(std::unique_ptr<ports::CPUCounters> counters) : real(std::move(counters)) {
    std::array<double, 3> averages{};
    real->readLoadAverages(averages);
    leftOut = std::max(averages[0] - real->activeProcessorCount(), 0.0);
  }
  std::optional<ports::CPUTicks> readTicks() override { return tick.cpu = real->readTicks(); }
  void readLoadAverages(std::span<double, 3> averages) override {
    real->readLoadAverages(averages);
    for (double& average : averages) average = std::max(average - leftOut, 0.0);
    std::copy(averages.begin(), averages.end(), tick.load.begin());
  }
  int activeProcessorCount() override { return tick.cores = real->activeProcessorCount(); }
  int processorCount() override { return real->processorCount(); }
  std::unique_ptr<ports::CPUCounters> real;
  double leftOut = 0.0;
};

struct TappedThermal final : ports::ThermalSensors {
  explicit TappedThermal(std::unique_ptr<ports::ThermalSensors> real) : real(std::move(real)) {}
  ports::ThermalReading readThermal() override { return tick.thermal = real->readThermal(); }
  bool isLowPowerModeEnabled() override { return real->isLowPowerModeEnabled(); }
  std::unique_ptr<ports::ThermalSensors> real;
};

template <typename Number>
void printOptional(std::FILE* file, const char* key, const std::optional<Number>& number) {
  if (number) {
    std::fprintf(file, "\"%s\":%.17g,", key, static_cast<double>(*number));
  } else {
    std::fprintf(file, "\"%s\":null,", key);
  }
}

void writeTick(std::FILE* file, double ring) {
  std::fprintf(file, "{\"memoryAt\":%.17g,\"physicalMemory\":%" PRIu64 ",", tick.memoryAt.secondsSince1970,
               tick.physicalMemory);
  if (tick.statistics) {
    std::fprintf(file, "\"decompressions\":%" PRIu64 ",\"swapins\":%" PRIu64 ",\"pageouts\":%" PRIu64 ",",
                 tick.statistics->decompressions, tick.statistics->swapins, tick.statistics->pageouts);
  }
  printOptional(file, "kernelLevel", tick.pressure.kernelLevel);
  printOptional(file, "someStallPercent", tick.pressure.someStallPercent);
  printOptional(file, "fullStallPercent", tick.pressure.fullStallPercent);
  printOptional(file, "availableBytes", tick.pressure.availableBytes);
  printOptional(file, "totalBytes", tick.pressure.totalBytes);
  if (tick.cpu) {
    std::fprintf(file, "\"cpu\":[%u,%u,%u,%u],", tick.cpu->user, tick.cpu->system, tick.cpu->idle,
                 tick.cpu->nice);
  }
  std::fprintf(file, "\"zones\":[");
  for (std::size_t i = 0; i < tick.thermal.zones.size(); ++i) {
    const auto& zone = tick.thermal.zones[i];
    std::fprintf(file, "%s{", i ? "," : "");
    printOptional(file, "passive", zone.passiveTrip);
    printOptional(file, "hot", zone.hotTrip);
    printOptional(file, "critical", zone.criticalTrip);
    std::fprintf(file, "\"temperature\":%lld}", static_cast<long long>(zone.temperature));
  }
  std::fprintf(file, "],\"load\":%.17g,\"cores\":%d,\"ring\":%.17g}\n", tick.load[0], tick.cores, ring);
  std::fflush(file);
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  std::FILE* file = argc > 1 ? std::fopen(argv[1], "w") : nullptr;
  if (!file) {
    std::fputs("ring_trace: name a file to write to\n", stderr);
    return 64;
  }
  auto real = SamplingBackEnds::ofThisMachine();
  SamplingBackEnds tapped{std::make_unique<TappedCalendar>(std::move(real.calendar)),
                          std::make_unique<TappedMemory>(std::move(real.memory)),
                          std::make_unique<TappedCPU>(std::move(real.cpu)),
                          std::make_unique<TappedThermal>(std::move(real.thermal)), std::move(real.power)};
  Subscription ring;
  const int status =
      runLinuxProgram(argc, argv, std::move(tapped), [&ring, file](Services& services, AppDelegate&) {
        ring = services.systemMonitor.ringProgress.subscribeToChanges(
            [file](double progress) { writeTick(file, progress); });
      });
  std::fclose(file);
  return status;
}

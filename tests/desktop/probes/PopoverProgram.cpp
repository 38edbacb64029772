// The whole program on a machine whose memory is controlled by lines on standard input:
//   pressure 1|2|4     sets the kernel's verdict for the next samples: normal, warning, critical
//   used PERCENT       sets the used share of the memory for the next samples, instead of the true one
//   look               takes a sample now
//   toggle             opens or closes the popover, without a click on the icon
// It prints "ring VALUE" after each sample. The rest of the machine is quiet. The lines of its log begin with
// the seconds of the monotonic clock.

#include "app/AppDelegate.h"
#include "app/Services.h"
#include "base/Logger.h"
#include "main/LinuxProgram.h"
#include "sampling/SystemMonitor.h"
#include "tests/desktop/probes/InputLines.h"

#include <QByteArray>
#include <cstdio>
#include <ctime>
#include <memory>

namespace vorli {
namespace {

struct Memory final : ports::MemoryCounters {
  explicit Memory(std::unique_ptr<ports::MemoryCounters> real) : real(std::move(real)) {}
  std::uint64_t pageSizeBytes() override { return real->pageSizeBytes(); }
  // No pages move, so only the verdict counts.
  std::optional<ports::VMStatistics> readStatistics() override {
    auto read = real->readStatistics();
    if (read) read->decompressions = read->swapins = read->pageouts = 0;
    if (read && usedPercent >= 0.0) {
      const double pages = static_cast<double>(physicalMemoryBytes() / pageSizeBytes());
      read->freeCount = static_cast<std::uint64_t>(pages * (1.0 - usedPercent / 100.0));
    }
    return read;
  }
  std::uint64_t physicalMemoryBytes() override { return real->physicalMemoryBytes(); }
  std::optional<ports::SwapUsage> readSwapUsage() override { return real->readSwapUsage(); }
  ports::PressureReading readPressure() override {
    ports::PressureReading reading;
    reading.kernelLevel = level;
    return reading;
  }
  std::unique_ptr<ports::MemoryCounters> real;
  static inline std::int32_t level = 1;
  static inline double usedPercent = -1.0;
};

struct QuietCPU final : ports::CPUCounters {
  std::optional<ports::CPUTicks> readTicks() override { return std::nullopt; }
  void readLoadAverages(std::span<double, 3> averages) override {
    std::fill(averages.begin(), averages.end(), 0.0);
  }
  int activeProcessorCount() override { return 2; }
  int processorCount() override { return 2; }
};

struct QuietSensors final : ports::ThermalSensors {
  ports::ThermalReading readThermal() override { return {}; }
  bool isLowPowerModeEnabled() override { return false; }
};

// The time at which the program wrote the line; the reader of the log may be late.
void logWithTime(const LogRecord& record) {
  if (record.level == LogLevel::debug || record.level == LogLevel::info) return;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  std::fprintf(stderr, "%lld.%06ld vorli %s: %s\n", static_cast<long long>(now.tv_sec), now.tv_nsec / 1000,
               std::string(record.category).c_str(), record.message.c_str());
}

class Director {
 public:
  Director(SystemMonitor& monitor, AppDelegate& delegate)
      : monitor_(monitor),
        delegate_(delegate),
        input_([this](const QByteArray& line) { obey(line); }),
        looks_(monitor.lastUpdate.subscribeToChanges([&monitor](Date) {
          std::printf("ring %.4f\n", static_cast<double>(monitor.ringProgress));
          std::fflush(stdout);
        })) {}

 private:
  void obey(const QByteArray& line) {
    if (line.startsWith("pressure ")) Memory::level = line.mid(9).toInt();
    if (line.startsWith("used ")) Memory::usedPercent = line.mid(5).toDouble();
    if (line == "look") monitor_.refresh();
    if (line == "toggle") delegate_.togglePopover();
  }

  SystemMonitor& monitor_;
  AppDelegate& delegate_;
  InputLines input_;
  Subscription looks_;
};

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  auto backEnds = SamplingBackEnds::ofThisMachine();
  backEnds.memory = std::make_unique<Memory>(std::move(backEnds.memory));
  backEnds.cpu = std::make_unique<QuietCPU>();
  backEnds.thermal = std::make_unique<QuietSensors>();
  std::unique_ptr<Director> director;
  return runLinuxProgram(argc, argv, std::move(backEnds),
                         [&director](Services& services, AppDelegate& delegate) {
                           Logger::setSink(logWithTime);
                           director = std::make_unique<Director>(services.systemMonitor, delegate);
                         });
}

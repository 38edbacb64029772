// The whole program on a machine whose memory does as it is told by lines on standard input:
//   pressure 1|2|4     the kernel's verdict from the next look on: normal, warning, critical
//   used PERCENT       how much of the memory is in use from the next look on, instead of the true share
//   look               a look at the machine now
// It prints "ring VALUE" after each look. Everything else of the machine is quiet. The lines of its log bear
// the seconds of the monotonic clock.

#include "base/Logger.h"
#include "main/LinuxProgram.h"
#include "sampling/SystemMonitor.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <cstdio>
#include <ctime>
#include <memory>
#include <unistd.h>

namespace vorli {
namespace {

struct Memory final : ports::MemoryCounters {
  explicit Memory(std::unique_ptr<ports::MemoryCounters> real) : real(std::move(real)) {}
  std::uint64_t pageSizeBytes() override { return real->pageSizeBytes(); }
  // Without movement of pages: only the verdict counts.
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

// The moment at which the program wrote it: what reads the log may come late.
void logWithTime(const LogRecord& record) {
  if (record.level == LogLevel::debug || record.level == LogLevel::info) return;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  std::fprintf(stderr, "%lld.%06ld vorli %s: %s\n", static_cast<long long>(now.tv_sec), now.tv_nsec / 1000,
               std::string(record.category).c_str(), record.message.c_str());
}

class Director {
 public:
  explicit Director(SystemMonitor& monitor)
      : monitor_(monitor),
        input_(STDIN_FILENO, QSocketNotifier::Read),
        looks_(monitor.lastUpdate.subscribeToChanges([&monitor](Date) {
          std::printf("ring %.4f\n", static_cast<double>(monitor.ringProgress));
          std::fflush(stdout);
        })) {
    QObject::connect(&input_, &QSocketNotifier::activated, [this] { read(); });
  }

 private:
  void read() {
    char piece[256];
    const auto got = ::read(STDIN_FILENO, piece, sizeof piece);
    if (got <= 0) return input_.setEnabled(false);
    pending_.append(piece, static_cast<int>(got));
    for (auto end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
      const auto line = pending_.left(end);
      pending_.remove(0, end + 1);
      if (line.startsWith("pressure ")) Memory::level = line.mid(9).toInt();
      if (line.startsWith("used ")) Memory::usedPercent = line.mid(5).toDouble();
      if (line == "look") monitor_.refresh();
    }
  }

  SystemMonitor& monitor_;
  QSocketNotifier input_;
  Subscription looks_;
  QByteArray pending_;
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
  return runLinuxProgram(argc, argv, std::move(backEnds), [&director](const WatchedServices& services) {
    Logger::setSink(logWithTime);
    director = std::make_unique<Director>(services.systemMonitor);
  });
}

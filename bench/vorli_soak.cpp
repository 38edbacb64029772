// vorli_soak PERIOD_MILLISECONDS: the whole program with extra ticks of that period, and a load that moves
// the dial from one end to the other and back. Everything else is read from the real machine.

#include "app/Services.h"
#include "main/LinuxProgram.h"
#include "sampling/SystemMonitor.h"

#include <QTimer>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace vorli {
namespace {

constexpr double ticksPerWave = 40.0;
constexpr double highestLoadPerProcessor = 2.0;

struct WavingCPU final : ports::CPUCounters {
  explicit WavingCPU(std::unique_ptr<ports::CPUCounters> real) : real(std::move(real)) {}

  std::optional<ports::CPUTicks> readTicks() override {
    ++tick;
    const auto busy = static_cast<std::uint32_t>(100.0 * height());
    ticks.user += busy;
    ticks.idle += 100 - busy;
    return ticks;
  }
  void readLoadAverages(std::span<double, 3> averages) override {
    averages[0] = averages[1] = averages[2] = height() * highestLoadPerProcessor * activeProcessorCount();
  }
  int activeProcessorCount() override { return real->activeProcessorCount(); }
  int processorCount() override { return real->processorCount(); }

  double height() const { return 0.5 - 0.5 * std::cos(6.2831853 * tick / ticksPerWave); }

  std::unique_ptr<ports::CPUCounters> real;
  double tick = 0.0;
  ports::CPUTicks ticks;
};

int soak(int argc, char** argv, int periodMilliseconds) {
  auto backEnds = SamplingBackEnds::ofThisMachine();
  backEnds.cpu = std::make_unique<WavingCPU>(std::move(backEnds.cpu));
  std::unique_ptr<QTimer> timer;
  const int status = runLinuxProgram(argc, argv, std::move(backEnds), [&](Services& services, AppDelegate&) {
    timer = std::make_unique<QTimer>();
    QObject::connect(timer.get(), &QTimer::timeout, [&monitor = services.systemMonitor, &timer = *timer] {
      if (monitor.hasTimer()) {
        monitor.refresh();
      } else {
        timer.stop();  // the program ends
      }
    });
    QTimer::singleShot(0, timer.get(),
                       [&timer = *timer, periodMilliseconds] { timer.start(periodMilliseconds); });
  });
  return status;
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  const int period = argc == 2 ? std::atoi(argv[1]) : 0;
  if (period < 1) {
    std::fputs("vorli_soak: PERIOD_MILLISECONDS\n", stderr);
    return 64;
  }
  return vorli::soak(argc, argv, period);
}

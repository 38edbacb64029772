// vorli_popover_watched: the whole program, which prints each frame that it paints, and the duration of each
// tick as "tick MICROSECONDS".

#include "app/Services.h"
#include "bench/PaintWatch.h"
#include "main/LinuxProgram.h"
#include "sampling/SystemMonitor.h"

#include <QTimer>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>

namespace {

constexpr int settledMilliseconds = 3000;

void tellTick(vorli::SystemMonitor& monitor) {
  std::array<double, 9> microseconds{};
  for (auto& time : microseconds) {
    const auto start = std::chrono::steady_clock::now();
    monitor.refresh();
    time = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
  }
  std::sort(microseconds.begin(), microseconds.end());
  std::printf("tick %.0f\n", microseconds[microseconds.size() / 2]);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace vorli;
  std::unique_ptr<bench::PaintWatch> watch;
  return runLinuxProgram(argc, argv, SamplingBackEnds::ofThisMachine(),
                         [&watch](Services& services, AppDelegate&) {
                           watch = std::make_unique<bench::PaintWatch>();
                           QTimer::singleShot(settledMilliseconds, watch.get(),
                                              [&monitor = services.systemMonitor] { tellTick(monitor); });
                         });
}

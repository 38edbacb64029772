// The whole program on a machine that is always too hot, so that there is something to polish. Lines on
// standard input: "open" opens the popover, "press" presses its button. Prints one line for each event: the
// seconds of the monotonic clock, a word, and its value, separated by tabs.

#include "ambient/ClearState.h"
#include "ambient/Notifications.h"
#include "app/AppDelegate.h"
#include "app/Services.h"
#include "base/Logger.h"
#include "helper/HelperManager.h"
#include "main/LinuxProgram.h"
#include "tests/desktop/probes/InputLines.h"
#include "tests/desktop/probes/MainLoopTurns.h"
#include "tests/fakes/ThermalSensors.h"

#include <QByteArray>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <vector>

namespace vorli {
namespace {

[[gnu::format(printf, 2, 3)]] void tell(const char* word, const char* format, ...) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  char value[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(value, sizeof value, format, arguments);
  va_end(arguments);
  for (char* at = value; *at; ++at) {
    if (*at == '\n') *at = ' ';
  }
  std::printf("%lld.%09ld\t%s\t%s\n", static_cast<long long>(now.tv_sec), now.tv_nsec, word, value);
  std::fflush(stdout);
}

/// Reports each reading, but hides the machine's pressure, which would start a polish of its own.
struct TappedMemory final : ports::MemoryCounters {
  explicit TappedMemory(std::unique_ptr<ports::MemoryCounters> real) : real(std::move(real)) {}
  std::uint64_t pageSizeBytes() override { return real->pageSizeBytes(); }
  std::optional<ports::VMStatistics> readStatistics() override {
    const auto statistics = real->readStatistics();
    const auto free = statistics ? statistics->freeCount * real->pageSizeBytes() : 0;
    tell("sample", "%llu %llu", static_cast<unsigned long long>(real->physicalMemoryBytes()),
         static_cast<unsigned long long>(free));
    return statistics;
  }
  std::uint64_t physicalMemoryBytes() override { return real->physicalMemoryBytes(); }
  std::optional<ports::SwapUsage> readSwapUsage() override { return real->readSwapUsage(); }
  ports::PressureReading readPressure() override { return {}; }
  std::unique_ptr<ports::MemoryCounters> real;
};

std::unique_ptr<ports::ThermalSensors> hotSensors() {
  auto sensors = std::make_unique<fakes::ThermalSensors>();
  sensors->reading.systemState = 3;
  return sensors;
}

void tellTurns(const MainLoopTurns& turns) {
  for (const auto& turn : turns.turns()) {
    if (turn.own() > 0.008)
      tell("long", "%.9f %.6f %.6f %.6f", turn.at, turn.work, turn.blocked(), turn.unserved);
  }
  double work = 0.0, mostWork = 0.0, mostBlocked = 0.0, mostUnserved = 0.0;
  for (const auto& turn : turns.turns()) {
    work += turn.work;
    mostWork = std::max(mostWork, turn.work);
    mostBlocked = std::max(mostBlocked, turn.blocked());
    mostUnserved = std::max(mostUnserved, turn.unserved);
  }
  tell("turns", "%zu %.6f %.6f %.6f %.6f", turns.turns().size(), work, mostWork, mostBlocked, mostUnserved);
  auto gaps = turns.gaps();
  if (gaps.empty()) return;
  std::ranges::sort(gaps);
  tell("beat", "%zu %.6f %.6f %.6f", gaps.size(), gaps[gaps.size() / 2], gaps[gaps.size() * 99 / 100],
       gaps.back());
}

class Probe {
 public:
  Probe(Services& services, AppDelegate& delegate) : services_(services), delegate_(delegate) {
    Logger::setSink([](const LogRecord& record) {
      tell("log", "%s: %s", std::string(record.category).c_str(), record.message.c_str());
    });
    services_.host.scheduler.post([this] { watch(*delegate_.popoverView()); });  // after the launch
  }
  ~Probe() { Logger::setSink(nullptr); }

 private:
  void watch(PopoverView& view) {
    keep(services_.helperManager.status.subscribe(
        [](const InstallStatus& status) { tell("helper", "%s", status.description().c_str()); }));
    keep(services_.notifications.observe<VorliClosePopover>([](const auto&) { tell("close", "-"); }));
    keep(services_.clearState.calmIntensity.subscribeToChanges(CalmPace::dial,
                                                               [this](double calm) { countCalm(calm); }));
    keep(view.postClearSentence.subscribeToChanges(
        [](const auto& sentence) { tell("sentence", "%s", sentence.value_or("-").c_str()); }));
    keep(view.postClearPercentage.subscribeToChanges(
        [](const auto& percentage) { tell("percentage", "%d", percentage.value_or(-1)); }));
    keep(view.animatedState.subscribe(
        [](RingState state) { tell("state", "%s", std::string(description(state)).c_str()); }));
    keep(view.animatedProgress.subscribe([](double progress) { tell("ring", "%.6f", progress); }));
    keep(view.celebrationScale.subscribe([](double scale) { tell("scale", "%.2f", scale); }));
    keep(view.auroraClearTrigger.subscribeToChanges([](int count) { tell("aurora", "%d", count); }));
    keep(view.isReleasing.subscribeToChanges([this](bool is) { released(is); }));
    input_.emplace([this, &view](const QByteArray& line) { obey(view, line); });
  }
  // Works even if there is nothing to attach the popover to.
  void open() {
    bool hasAppeared = false;
    const auto appearing = services_.notifications.observe<VorliAnimateAppear>(
        [&hasAppeared](const auto&) { hasAppeared = true; });
    delegate_.togglePopover();
    if (!hasAppeared) services_.notifications.post(VorliAnimateAppear{});
    tell("window", "%d", hasAppeared ? 1 : 0);
  }
  void keep(Subscription subscription) { subscriptions_.push_back(std::move(subscription)); }

  // The audio probe comes before this; only it may block the thread.
  void released(bool is) {
    if (is) {
      const auto probe = turns_.restart();
      tell("probe", "%.6f %.6f", probe.wall, probe.unserved);
    } else {
      turns_.stop();
      tellTurns(turns_);
      tell("calms", "%d", calms_);
    }
    tell("releasing", "%d", is ? 1 : 0);
  }

  void countCalm(double calm) {
    if (++calms_ == 1 || (calm == 1.0 && lastCalm_ < 1.0)) tell("calm", "%.6f", calm);
    lastCalm_ = calm;
  }

  void obey(PopoverView& view, const QByteArray& line) {
    if (line == "press") {
      tell("press", "-");
      view.polishPressed();
    } else if (line == "open") {
      open();
    }
  }

  Services& services_;
  AppDelegate& delegate_;
  std::optional<InputLines> input_;  // from the launch on
  MainLoopTurns turns_;
  int calms_ = 0;
  double lastCalm_ = 0.0;
  std::vector<Subscription> subscriptions_;
};

}  // namespace
}  // namespace vorli

// Replaces the C library's function for everything that is loaded.
extern "C" int poll(pollfd* files, nfds_t count, int milliseconds) {
  const timespec limit{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
  return vorli::MainLoopTurns::wait(files, count, milliseconds < 0 ? nullptr : &limit, nullptr);
}
extern "C" int ppoll(pollfd* files, nfds_t count, const timespec* limit, const sigset_t* mask) {
  return vorli::MainLoopTurns::wait(files, count, limit, mask);
}

int main(int argc, char** argv) {
  using namespace vorli;
  auto backEnds = SamplingBackEnds::ofThisMachine();
  backEnds.memory = std::make_unique<TappedMemory>(std::move(backEnds.memory));
  backEnds.thermal = hotSensors();
  std::unique_ptr<Probe> probe;
  return runLinuxProgram(argc, argv, std::move(backEnds),
                         [&probe](Services& services, AppDelegate& delegate) {
                           probe = std::make_unique<Probe>(services, delegate);
                         });
}

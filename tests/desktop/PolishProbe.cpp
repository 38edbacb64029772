// The whole program on a machine that is always too hot, so that there is something to polish. Takes a line
// on standard input: "open" the popover, or "press" its button. Prints what happens, a line each: the seconds
// of the monotonic clock, a word, and its value, parted by tabs.

#include "ambient/ClearState.h"
#include "app/AppDelegate.h"
#include "app/Notifications.h"
#include "base/Logger.h"
#include "helper/HelperManager.h"
#include "main/LinuxProgram.h"
#include "tests/desktop/MainLoopTurns.h"
#include "tests/fakes/ThermalSensors.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <memory>
#include <unistd.h>
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

/// Tells each reading, and nothing of the machine's pressure, which would start a polish of its own.
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
  explicit Probe(const WatchedServices& services)
      : services_(services), input_(STDIN_FILENO, QSocketNotifier::Read) {
    Logger::setSink([](const LogRecord& record) {
      tell("log", "%s: %s", std::string(record.category).c_str(), record.message.c_str());
    });
    services_.scheduler.post([this] { watch(*services_.delegate.popoverView()); });  // after the launch
  }
  ~Probe() { Logger::setSink(nullptr); }

 private:
  void watch(PopoverView& view) {
    keep(services_.helperManager.status.subscribe(
        [](const InstallStatus& status) { tell("helper", "%s", status.description().c_str()); }));
    keep(services_.notifications.observe<VorliClosePopover>([](const auto&) { tell("close", "-"); }));
    keep(services_.clearState.calmIntensity.subscribeToChanges([this](double calm) { countCalm(calm); }));
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
    QObject::connect(&input_, &QSocketNotifier::activated, [this, &view] { read(view); });
  }
  // Also where there is nothing to hang the popover from.
  void open() {
    bool hasAppeared = false;
    const auto appearing = services_.notifications.observe<VorliAnimateAppear>(
        [&hasAppeared](const auto&) { hasAppeared = true; });
    services_.delegate.togglePopover();
    if (!hasAppeared) services_.notifications.post(VorliAnimateAppear{});
    tell("window", "%d", hasAppeared ? 1 : 0);
  }
  void keep(Subscription subscription) { subscriptions_.push_back(std::move(subscription)); }

  // What goes before is the probe for sound, the one thing that may hold up the thread.
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

  void read(PopoverView& view) {
    char piece[64];
    const auto got = ::read(STDIN_FILENO, piece, sizeof piece);
    if (got <= 0) return input_.setEnabled(false);
    pending_.append(piece, static_cast<int>(got));
    for (auto end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
      const auto line = pending_.left(end);
      pending_.remove(0, end + 1);
      if (line == "press") {
        tell("press", "-");
        view.polishPressed();
      } else if (line == "open") {
        open();
      }
    }
  }

  WatchedServices services_;
  QSocketNotifier input_;
  QByteArray pending_;
  MainLoopTurns turns_;
  int calms_ = 0;
  double lastCalm_ = 0.0;
  std::vector<Subscription> subscriptions_;
};

}  // namespace
}  // namespace vorli

// In place of the C library's, for all that is loaded.
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
  return runLinuxProgram(argc, argv, std::move(backEnds), [&probe](const WatchedServices& services) {
    probe = std::make_unique<Probe>(services);
  });
}

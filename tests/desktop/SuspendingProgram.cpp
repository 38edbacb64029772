// The whole program, which records a process as one that stands stopped for each line "record PID" on
// standard input, and prints "recorded PID..." at each change of what is recorded. It stops nothing itself.

#include "insights/SuspendedAppsManager.h"
#include "main/LinuxProgram.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace vorli {
namespace {

void record(SuspendedAppsManager& apps, std::int32_t pid) {
  auto info = apps.suspendedInfo.get();
  info[pid] = {"org.example.stopped", "Stopped", Date{}};
  apps.suspendedInfo = std::move(info);
  auto pids = apps.suspendedPIDs.get();
  pids.insert(pid);
  apps.suspendedPIDs = std::move(pids);
}

void print(const std::set<std::int32_t>& pids) {
  std::fputs("recorded", stdout);
  for (const auto pid : pids) std::printf(" %d", pid);
  std::puts("");
  std::fflush(stdout);
}

class Recorder {
 public:
  explicit Recorder(SuspendedAppsManager& apps)
      : input_(STDIN_FILENO, QSocketNotifier::Read), changes_(apps.suspendedPIDs.subscribeToChanges(print)) {
    QObject::connect(&input_, &QSocketNotifier::activated, [this, &apps] { read(apps); });
  }

 private:
  void read(SuspendedAppsManager& apps) {
    char piece[256];
    const auto got = ::read(STDIN_FILENO, piece, sizeof piece);
    if (got <= 0) return input_.setEnabled(false);
    pending_.append(piece, static_cast<int>(got));
    for (auto end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
      const auto line = pending_.left(end);
      pending_.remove(0, end + 1);
      if (line.startsWith("record ")) record(apps, line.mid(7).toInt());
    }
  }

  QSocketNotifier input_;
  Subscription changes_;
  QByteArray pending_;
};

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  std::unique_ptr<Recorder> recorder;
  return runLinuxProgram(argc, argv, SamplingBackEnds::ofThisMachine(),
                         [&recorder](const WatchedServices& services) {
                           recorder = std::make_unique<Recorder>(services.suspendedAppsManager);
                         });
}

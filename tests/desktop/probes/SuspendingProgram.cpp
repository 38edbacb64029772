// The whole program, which records a process as stopped for each line "record PID" on standard input, and
// prints "recorded PID..." at each change of what is recorded. It stops nothing itself. At "change and leave"
// it switches a setting off and ends the process at once, like Qt does when the X server is lost.

#include "app/Services.h"
#include "insights/SuspendedAppsManager.h"
#include "main/LinuxProgram.h"
#include "tests/desktop/probes/InputLines.h"
#include "tests/fakes/Publish.h"

#include <QByteArray>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace vorli {
namespace {

void record(SuspendedAppsManager& apps, std::int32_t pid) {
  auto info = apps.suspendedInfo.get();
  info[pid] = {"org.example.stopped", "Stopped", Date{}};
  fakes::publish(apps.suspendedInfo, std::move(info));
  auto pids = apps.suspendedPIDs.get();
  pids.insert(pid);
  fakes::publish(apps.suspendedPIDs, std::move(pids));
}

void print(const std::set<std::int32_t>& pids) {
  std::fputs("recorded", stdout);
  for (const auto pid : pids) std::printf(" %d", pid);
  std::puts("");
  std::fflush(stdout);
}

void changeAndLeave(AppSettings& settings) {
  settings.hapticFeedback.set(false);
  std::exit(EXIT_FAILURE);
}

class Recorder {
 public:
  explicit Recorder(Services& services)
      : input_([&services](const QByteArray& line) {
          if (line.startsWith("record ")) record(services.suspendedAppsManager, line.mid(7).toInt());
          if (line == "change and leave") changeAndLeave(services.settings);
        }),
        changes_(services.suspendedAppsManager.suspendedPIDs.subscribeToChanges(print)) {}

 private:
  InputLines input_;
  Subscription changes_;
};

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  std::unique_ptr<Recorder> recorder;
  return runLinuxProgram(
      argc, argv, SamplingBackEnds::ofThisMachine(),
      [&recorder](Services& services, AppDelegate&) { recorder = std::make_unique<Recorder>(services); });
}

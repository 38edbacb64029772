#include "main/LinuxProgram.h"

#include "base/Logger.h"
#include "helper/InstallStatus.h"
#include "linux/helper/ContinueWithoutLoop.h"
#include "linux/kernel/CPUCounters.h"
#include "linux/kernel/MemoryCounters.h"
#include "linux/kernel/PowerSources.h"
#include "linux/kernel/ThermalSensors.h"
#include "linux/session/BusGreeting.h"
#include "linux/session/SessionBusService.h"
#include "linux/session/SystemLog.h"
#include "linux/session/TerminationSignals.h"
#include "main/LinuxDisplay.h"
#include "main/LinuxHost.h"
#include "main/Program.h"
#include "posix/CalendarClock.h"

#include <QApplication>
#include <QSessionManager>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace vorli {

namespace {

constexpr Logger programLog{logSubsystem, "program"};

constexpr int exitNoDisplay = 1;
constexpr int exitNoAnswer = 2;

// Keeps a log line from ending the program when standard error is a pipe without a reader. SIGPIPE is
// handled, not ignored: programs that we start would inherit an ignored signal.
void outliveReadersOfPipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGPIPE, &action, nullptr);
}

// The message for which the bus has started the program arrives with the first turns of the loop.
constexpr double activationOfStartSeconds = 1.0;

// A bus is slow to answer while the desktop starts; after this long it is taken as hung.
constexpr double sessionBusLimitSeconds = 10.0;

// Qt waits indefinitely for a session bus that hangs. The program then runs as if there were none.
void leaveAHangingSessionBus() {
  if (linuxhost::greetsBack(linuxhost::sessionBusAddress(), sessionBusLimitSeconds)) return;
  programLog.error("the session bus does not answer; going on without it");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

// Prints the result of a second start and returns its exit status; empty for the first start.
std::optional<int> statusBesideAnother(linuxhost::SessionBusService::Claim claim) {
  using Claim = linuxhost::SessionBusService::Claim;
  const bool answered = claim == Claim::alreadyRunning;
  if (!answered && claim != Claim::noAnswer) return std::nullopt;
  std::fprintf(stderr, "vorli: already running%s\n",
               answered ? "; it has come to the front" : ", but it does not answer");
  return answered ? EXIT_SUCCESS : exitNoAnswer;
}

// Keeps a session manager from starting the program at the next login: its own setting decides that.
void leaveTheStartToUs(QSessionManager& manager) {
  manager.setRestartHint(QSessionManager::RestartNever);
}

std::string caseName(InstallStatus status) {
  switch (status.which()) {
    case InstallStatus::Case::unknown:
      return "unknown";
    case InstallStatus::Case::notRegistered:
      return "notRegistered";
    case InstallStatus::Case::requiresApproval:
      return "requiresApproval";
    case InstallStatus::Case::enabled:
      return "enabled";
    case InstallStatus::Case::notFound:
      return "notFound";
  }
  return "unknown";
}

using LinuxProgram = Program<LinuxHost>;

// The program while its main loop runs.
LinuxProgram* running = nullptr;

// Qt ends the process from inside its loop when the X server is lost. Nothing can run in that loop any more,
// so essential work is done here.
void leaveFromWithinTheLoop() {
  LinuxProgram* program = std::exchange(running, nullptr);
  if (!program) return;
  linuxhost::continueWithoutLoop(program->services.suspendedAppsManager.suspendedPIDs);
  program->host.defaults.synchronize();
}

}  // namespace

SamplingBackEnds SamplingBackEnds::ofThisMachine() {
  return {std::make_unique<posix::CalendarClock>(), std::make_unique<linuxhost::MemoryCounters>(),
          std::make_unique<linuxhost::CPUCounters>(), std::make_unique<linuxhost::ThermalSensors>(),
          std::make_unique<linuxhost::PowerSources>()};
}

int runLinuxProgram(int argc, char** argv, SamplingBackEnds backEnds,
                    const std::function<void(Services&, AppDelegate&)>& watch) {
  outliveReadersOfPipes();
  logToTheSystem<linuxhost::SystemLog>();

  std::optional<X11Preference> preference(std::in_place);
  if (!hasDisplay()) {
    std::fputs("vorli: there is no display to show the dial on\n", stderr);
    return exitNoDisplay;
  }
  leaveAHangingSessionBus();
  QApplication application(argc, argv);
  preference.reset();
  prepareApplication(application);
  application.setDesktopFileName(QStringLiteral("com.kv.vorli"));

  linuxhost::SessionBusService sessionBus;
  if (const auto status = statusBesideAnother(sessionBus.claim())) return *status;

  LinuxProgram program(std::move(backEnds));
  program.host.showHelperPage = [&program] { program.delegate.showHelperPage(); };
  std::uint64_t ticks = 0;
  const auto counting =
      program.services.systemMonitor.lastUpdate.subscribeToChanges([&ticks](Date) { ++ticks; });
  sessionBus.setActivationHandler([&program] { program.delegate.reopen(); });
  sessionBus.setStatusProvider([&program, &ticks] {
    return linuxhost::SessionBusService::Status{program.services.systemMonitor.ringProgress, ticks,
                                                caseName(program.services.helperManager.status)};
  });
  linuxhost::TerminationSignals terminationSignals([&program] { program.host.application.terminate(); });
  for (const auto request : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
    QObject::connect(&application, request, &program.lifetime, leaveTheStartToUs);

  if (watch) watch(program.services, program.delegate);
  program.delegate.applicationDidFinishLaunching();
  program.host.scheduler.after(activationOfStartSeconds, [&sessionBus] { sessionBus.startIsOver(); });
  running = &program;
  std::atexit(leaveFromWithinTheLoop);
  const int status = QApplication::exec();
  running = nullptr;
  program.finish();
  return status;
}

}  // namespace vorli

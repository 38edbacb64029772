#include "main/LinuxProgram.h"

#include "ambient/CelebrationGlowController.h"
#include "ambient/ClearState.h"
#include "ambient/EdgeGlowController.h"
#include "ambient/PopoverView.h"
#include "app/AppDelegate.h"
#include "app/AppSettings.h"
#include "helper/HelperManager.h"
#include "insights/CulpritFormatter.h"
#include "insights/IdleAppTracker.h"
#include "insights/SuspendedAppsManager.h"
#include "linux/ApplicationBundle.h"
#include "linux/AudioOutputTap.h"
#include "linux/CPUCounters.h"
#include "linux/DesktopShell.h"
#include "linux/Haptics.h"
#include "linux/HelperNameWatch.h"
#include "linux/HelperService.h"
#include "linux/HelperTransport.h"
#include "linux/KeyValueStore.h"
#include "linux/MemoryCounters.h"
#include "linux/PowerSources.h"
#include "linux/ProcessTable.h"
#include "linux/SessionBusGreeting.h"
#include "linux/SessionBusService.h"
#include "linux/SystemBus.h"
#include "linux/SystemLog.h"
#include "linux/TerminationSignals.h"
#include "linux/ThermalSensors.h"
#include "linux/Workspace.h"
#include "polish/QuietPolish.h"
#include "posix/BackgroundWork.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "ui/ApplicationHost.h"
#include "ui/QtScheduler.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/GlowOverlay.h"
#include "ui/linux/ManagerSelections.h"
#include "ui/linux/MotionPreference.h"
#include "ui/linux/PanelAppearance.h"
#include "ui/linux/PopoverWindow.h"
#include "ui/linux/StatusItem.h"
#include "ui/linux/X11Surroundings.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QPixmapCache>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <xcb/xcb.h>

namespace vorli {

namespace {

constexpr Logger logger{logSubsystem, "program"};

constexpr int exitNoDisplay = 1;

// The dial's pictures are cached where they are drawn; Qt's own cache of 10 MB would only grow.
constexpr int pixmapCacheKilobytes = 1024;

// Qt ends the process with a core dump when there is no display; a sentence serves better.
bool canReachDisplay() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reached;
}

// Placing the popover and watching for clicks outside of it need X11, which XWayland offers too.
void preferX11() {
  if (std::getenv("DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
}

// Qt's Wayland back end is a package of its own.
bool hasWaylandBackEnd() {
  const QDir backEnds(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
  return !backEnds.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
}

bool hasDisplay() {
  const auto platform = qgetenv("QT_QPA_PLATFORM");
  if (platform.startsWith("xcb")) return canReachDisplay();
  if (platform.startsWith("wayland")) return hasWaylandBackEnd();
  if (!platform.isEmpty()) return true;
  return (std::getenv("WAYLAND_DISPLAY") && hasWaylandBackEnd()) || canReachDisplay();
}

// Standard error may be a pipe that nobody reads any more, and a line of the log must not end the program.
// Handled and not ignored: what is ignored stays ignored in every program that we start.
void outliveReadersOfPipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGPIPE, &action, nullptr);
}

// A whole desktop that starts is slow to answer; one that takes so long does not answer at all.
constexpr double sessionBusLimitSeconds = 10.0;

// Qt waits without end for a session bus that hangs. The program then lives as it does without one.
void leaveAHangingSessionBus() {
  if (linuxhost::greetsBack(linuxhost::sessionBusAddress(), sessionBusLimitSeconds)) return;
  logger.error("the session bus does not answer; going on without it");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
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

// The daemon's program and what registers it: where both are installed, or beside this program in a build
// tree.
std::string helperFolder(const std::string& programPath) {
  const std::filesystem::path folder = std::filesystem::path(programPath).parent_path();
  const std::filesystem::path installed = (folder / "../libexec/vorli").lexically_normal();
  std::error_code failed;
  return (std::filesystem::exists(installed / "vorli-helper", failed) ? installed : folder).string();
}

// Every service of the program, in the order in which they are built; they go in the reverse order.
struct Program {
  explicit Program(SamplingBackEnds given) : backEnds(std::move(given)) {}

  SamplingBackEnds backEnds;
  ui::QtScheduler scheduler;
  NotificationCenter notifications;
  linuxhost::ApplicationBundle bundle;
  linuxhost::KeyValueStore defaults{scheduler, linuxhost::KeyValueStore::defaultFile()};
  linuxhost::ProcessTable processes{*backEnds.calendar};
  posix::BackgroundWork background{scheduler};
  linuxhost::Workspace workspace{scheduler};
  linuxhost::DesktopShell desktop;
  linuxhost::AudioOutputTap outputTap{scheduler};
  QDBusConnection trayBus =
      QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("vorli-tray"));
  ui::ManagerSelections selections;
  ui::DesktopAppearance desktopAppearance{trayBus, selections};
  ui::X11Surroundings surroundings{desktopAppearance, selections};
  ui::ApplicationHost host{bundle, surroundings};
  linuxhost::SystemBus systemBus;
  std::shared_ptr<linuxhost::HelperNameWatch> helperName = linuxhost::HelperNameWatch::on(systemBus);
  linuxhost::HelperTransport helperTransport{scheduler, systemBus, helperName};
  // There is no page about the daemon to show, and a program that starts shows nothing unasked.
  linuxhost::HelperService helperService{scheduler, systemBus, helperName, helperFolder(bundle.bundlePath()),
                                         [] {}};
  ui::PanelAppearance panelAppearance{selections, desktopAppearance,
                                      qEnvironmentVariable("XDG_CURRENT_DESKTOP")};
  ui::StatusItem statusItem{scheduler, trayBus, selections, desktopAppearance, panelAppearance};

  ui::MotionPreference motion{selections};
  ui::PopoverWindow popoverWindow{scheduler, [this] { return statusItem.lastClick(); }, desktopAppearance,
                                  selections, surroundings};
  ui::GlowOverlay celebrationOverlay{scheduler, selections, [this] { return popoverWindow.nativeWindow(); }};
  ui::GlowOverlay edgeOverlay{scheduler, selections, [this] { return popoverWindow.nativeWindow(); }};
  linuxhost::Haptics haptics;

  HelperManager helperManager{scheduler, helperService, helperTransport, bundle};
  AppSettings settings{defaults};
  IdleAppTracker idleTracker{scheduler, *backEnds.calendar, defaults, workspace};
  SystemMonitor systemMonitor{{scheduler, *backEnds.calendar, *backEnds.memory, *backEnds.cpu,
                               *backEnds.thermal, *backEnds.power, processes, workspace, bundle, background},
                              settings,
                              idleTracker};
  SuspendedAppsManager suspendedAppsManager{scheduler, helperManager, workspace};
  ClearState clearState{scheduler};
  AudioActivityProbe audio{outputTap};
  QuietPolish quietPolish{scheduler, *backEnds.calendar, helperManager, systemMonitor, settings, audio};
  CelebrationGlowController celebrationGlow{scheduler, celebrationOverlay};
  EdgeGlowController edgeGlow{{scheduler, edgeOverlay, workspace, motion, systemMonitor, clearState}};
  CulpritFormatter culpritFormatter{workspace, ApplicationPaths(bundle.homeDirectory())};
  PopoverServices popoverServices{
      .polish = {scheduler, notifications, systemMonitor, helperManager, settings, clearState,
                 celebrationGlow, audio, haptics, workspace, bundle, *backEnds.memory, *backEnds.calendar},
      .defaults = defaults,
      .culpritFormatter = culpritFormatter,
      .motion = motion};
  AppDelegate delegate{{.scheduler = scheduler,
                        .notifications = notifications,
                        .defaults = defaults,
                        .bundle = bundle,
                        .statusItem = statusItem,
                        .host = host,
                        .desktop = desktop,
                        .helperManager = helperManager,
                        .systemMonitor = systemMonitor,
                        .settings = settings,
                        .suspendedAppsManager = suspendedAppsManager,
                        .clearState = clearState,
                        .quietPolish = quietPolish,
                        .edgeGlow = edgeGlow,
                        .popoverServices = popoverServices,
                        .popover = popoverWindow,
                        .installContent = [this](PopoverView& view) { popoverWindow.mount(view); }}};
};

}  // namespace

SamplingBackEnds SamplingBackEnds::ofThisMachine() {
  return {std::make_unique<posix::CalendarClock>(), std::make_unique<linuxhost::MemoryCounters>(),
          std::make_unique<linuxhost::CPUCounters>(), std::make_unique<linuxhost::ThermalSensors>(),
          std::make_unique<linuxhost::PowerSources>()};
}

int runLinuxProgram(int argc, char** argv, SamplingBackEnds backEnds,
                    std::function<void(const WatchedServices&)> watch) {
  outliveReadersOfPipes();
  // Owned by the sink, which a thread may be using when the program ends.
  Logger::setSink(
      [log = std::make_shared<linuxhost::SystemLog>()](const LogRecord& record) { log->write(record); });

  preferX11();
  if (!hasDisplay()) {
    std::fputs("vorli: there is no display to show the dial on\n", stderr);
    return exitNoDisplay;
  }
  leaveAHangingSessionBus();
  QApplication application(argc, argv);
  application.setQuitOnLastWindowClosed(false);
  application.setApplicationName(QStringLiteral("Vorli"));
  application.setDesktopFileName(QStringLiteral("com.kv.vorli"));
  QPixmapCache::setCacheLimit(pixmapCacheKilobytes);

  linuxhost::SessionBusService sessionBus;
  if (sessionBus.claim() == linuxhost::SessionBusService::Claim::alreadyRunning) {
    std::fputs("vorli: already running; it was brought to the front\n", stderr);
    return EXIT_SUCCESS;
  }

  Program program(std::move(backEnds));
  std::uint64_t ticks = 0;
  const auto counting = program.systemMonitor.lastUpdate.subscribeToChanges([&ticks](Date) { ++ticks; });
  sessionBus.setActivationHandler([&program] { program.delegate.togglePopover(); });
  sessionBus.setStatusProvider([&program, &ticks] {
    return linuxhost::SessionBusService::Status{program.systemMonitor.ringProgress, ticks,
                                                caseName(program.helperManager.status)};
  });
  program.helperService.setChangeHandler([&program] { program.helperManager.refreshStatus(); });
  program.host.setTerminationHandler([&program] {
    return program.delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::now;
  });
  linuxhost::TerminationSignals terminationSignals([&program] { program.host.terminate(); });
  const QObject whileTheProgramStands;
  QObject::connect(&application, &QGuiApplication::applicationStateChanged, &whileTheProgramStands,
                   [&program](Qt::ApplicationState state) {
                     if (state == Qt::ApplicationActive)
                       program.notifications.post(ApplicationDidBecomeActive{});
                   });

  if (watch)
    watch({program.systemMonitor, program.suspendedAppsManager, program.scheduler, program.notifications,
           program.helperManager, program.clearState, program.delegate});
  program.delegate.applicationDidFinishLaunching();
  const int status = QApplication::exec();
  program.delegate.applicationWillTerminate();
  program.popoverWindow.unmount();
  program.defaults.synchronize();
  return status;
}

}  // namespace vorli

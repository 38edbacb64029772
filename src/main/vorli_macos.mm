#include "diagnostics/Diagnostics.h"
#include "flows/ProductAddresses.h"
#include "macos/applications/Workspace.h"
#include "macos/crash/CrashHost.h"
#include "macos/helper/HelperService.h"
#include "macos/helper/HelperTransport.h"
#include "macos/kernel/CPUCounters.h"
#include "macos/kernel/MemoryCounters.h"
#include "macos/kernel/PowerSources.h"
#include "macos/kernel/ProcessTable.h"
#include "macos/kernel/ThermalSensors.h"
#include "macos/session/ApplicationBundle.h"
#include "macos/session/DesktopShell.h"
#include "macos/session/FileViewer.h"
#include "macos/session/GlobalHotkeys.h"
#include "macos/session/Haptics.h"
#include "macos/session/KeyMonitor.h"
#include "macos/session/KeyValueStore.h"
#include "macos/session/LinkOpener.h"
#include "macos/session/LoginItem.h"
#include "macos/session/MotionPreference.h"
#include "macos/session/SystemDescription.h"
#include "macos/session/SystemLog.h"
#include "macos/session/UpdateFramework.h"
#include "macos/session/UserNotificationCenter.h"
#include "macos/sound/AudioOutputTap.h"
#include "macos/startup/ApplicationIcons.h"
#include "macos/startup/StartupBackEnds.h"
#include "main/Program.h"
#include "posix/BackgroundWork.h"
#include "posix/CalendarClock.h"
#include "posix/CrashCapture.h"
#include "posix/Files.h"
#include "posix/SerialQueue.h"
#include "ui/kit/Pasteboard.h"
#include "ui/loop/QtScheduler.h"
#include "ui/macos/GlowOverlay.h"
#include "ui/macos/MacSurroundings.h"
#include "ui/macos/PopoverWindow.h"
#include "ui/macos/StatusItem.h"
#include "ui/windows/ApplicationHost.h"
#include "ui/windows/OnboardingContent.h"
#include "ui/windows/SettingsWindowController.h"
#include "ui/windows/SheetWindow.h"

#include <QApplication>
#include <csignal>
#include <dispatch/dispatch.h>
#include <pthread/qos.h>

namespace vorli {

namespace {

// The back ends, in construction order.
struct MacHost {
  ui::QtScheduler scheduler;
  posix::CalendarClock calendar;
  machost::MemoryCounters memory;
  machost::CPUCounters cpu;
  machost::ThermalSensors thermal;
  machost::PowerSources power;
  machost::ApplicationBundle bundle;
  machost::KeyValueStore defaults;
  posix::Files files;
  posix::SerialQueue logQueue{[] { pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0); }};
  machost::SystemDescription system;
  posix::CrashCapture crashes{machost::crashHost()};
  machost::ProcessTable processes;
  posix::BackgroundWork background{scheduler};
  machost::Workspace workspace{scheduler};
  machost::DesktopShell desktop;
  machost::AudioOutputTap audioOutput;
  machost::FileViewer fileViewer;
  const DiagnosticsFolders diagnosticsFolders{
      bundle.homeDirectory() + "/Library/Logs/Vorli",
      bundle.homeDirectory() + "/Library/Application Support/Vorli/CrashReports"};
  machost::UserNotificationCenter notices{scheduler};
  machost::GlobalHotkeys hotkeys{scheduler};
  machost::LoginItem loginItem;
  machost::ApplicationIcons icons;
  machost::MotionPreference motion;
  ui::MacSurroundings surroundings{ui::WindowMotion{scheduler, motion}};
  ui::ApplicationHost application{bundle, surroundings};
  machost::KeyMonitor keys;
  machost::LinkOpener links;
  ui::SettingsWindowController settingsWindow{surroundings};
  ui::SheetWindow crashReportWindow;
  ui::Pasteboard pasteboard;
  const ProductAddresses addresses{VORLI_FEEDBACK_ADDRESS, VORLI_MAKER_ADDRESS, VORLI_SUPPORT_ADDRESS,
                                   VORLI_INSTALL_ADDRESS};
  machost::UpdateFramework updates{scheduler};
  machost::HelperTransport helperTransport;
  machost::HelperService helperService{scheduler};
  ui::StatusItem statusItem{scheduler};
  ui::SheetWindow onboardingWindow;
  ui::OnboardingContent onboardingContent{onboardingWindow, surroundings, scheduler, motion};
  ui::PopoverWindow popover{scheduler, [this] { return statusItem.anchor(); }, surroundings};
  ui::GlowOverlay celebrationOverlay{scheduler};
  ui::GlowOverlay edgeOverlay{scheduler};
  machost::Haptics haptics;
  machost::StartupBackEnds startup{scheduler, bundle.homeDirectory()};
};

// Quits in the same way as the menu for as long as it lives, so that no suspended process stays behind. The
// signal's default action would come before that of the source, so it is handled, and not ignored: programs
// that we start would inherit an ignored signal.
class TerminationSignal {
 public:
  explicit TerminationSignal(ui::ApplicationHost& application) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    ui::ApplicationHost* const leaving = &application;
    dispatch_source_set_event_handler(source_, ^{
      leaving->terminate();
    });
    dispatch_resume(source_);
  }
  ~TerminationSignal() { dispatch_source_cancel(source_); }
  TerminationSignal(const TerminationSignal&) = delete;
  TerminationSignal& operator=(const TerminationSignal&) = delete;

 private:
  const dispatch_source_t source_ =
      dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, SIGTERM, 0, dispatch_get_main_queue());
};

int runProgram() {
  Program<MacHost> program;
  const TerminationSignal terminationSignal(program.host.application);
  program.delegate.applicationDidFinishLaunching();
  const int status = QApplication::exec();
  program.finish();
  return status;
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  vorli::logToTheSystem<vorli::machost::SystemLog>();
  QApplication application(argc, argv);
  vorli::prepareApplication(application);
  return vorli::runProgram();
}

#pragma once

#include "diagnostics/Diagnostics.h"
#include "flows/ProductAddresses.h"
#include "linux/applications/Workspace.h"
#include "linux/crash/CrashHost.h"
#include "linux/helper/HelperNameWatch.h"
#include "linux/helper/HelperService.h"
#include "linux/helper/HelperTransport.h"
#include "linux/helper/SystemBus.h"
#include "linux/kernel/ProcessTable.h"
#include "linux/kernel/ThreadPriority.h"
#include "linux/session/ApplicationBundle.h"
#include "linux/session/DesktopShell.h"
#include "linux/session/FileViewer.h"
#include "linux/session/Haptics.h"
#include "linux/session/KeyValueStore.h"
#include "linux/session/LinkHandlers.h"
#include "linux/session/LinkOpener.h"
#include "linux/session/LoginItem.h"
#include "linux/session/SystemDescription.h"
#include "linux/session/UserFolders.h"
#include "linux/sound/AudioOutputTap.h"
#include "linux/startup/ApplicationIcons.h"
#include "linux/startup/StartupBackEnds.h"
#include "main/LinuxProgram.h"
#include "ports/UserNotificationCenter.h"
#include "posix/BackgroundWork.h"
#include "posix/CrashCapture.h"
#include "posix/Files.h"
#include "posix/SerialQueue.h"
#include "ui/kit/KeyMonitor.h"
#include "ui/kit/Pasteboard.h"
#include "ui/linux/DesktopAppearance.h"
#include "ui/linux/GlobalHotkeys.h"
#include "ui/linux/GlowOverlay.h"
#include "ui/linux/IconThemeName.h"
#include "ui/linux/ManagerSelections.h"
#include "ui/linux/MotionPreference.h"
#include "ui/linux/PanelAppearance.h"
#include "ui/linux/PopoverWindow.h"
#include "ui/linux/SoftwareCentre.h"
#include "ui/linux/StatusItem.h"
#include "ui/linux/UpdateFramework.h"
#include "ui/linux/X11Surroundings.h"
#include "ui/loop/QtScheduler.h"
#include "ui/windows/ApplicationHost.h"
#include "ui/windows/OnboardingContent.h"
#include "ui/windows/SettingsWindowController.h"
#include "ui/windows/SheetWindow.h"

#include <QDBusConnection>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace vorli {

/// The back ends on Linux, in construction order.
struct LinuxHost {
  explicit LinuxHost(SamplingBackEnds given) : backEnds(std::move(given)) {}

  const SamplingBackEnds backEnds;
  const ports::CalendarClock& calendar = *backEnds.calendar;
  ports::MemoryCounters& memory = *backEnds.memory;
  ports::CPUCounters& cpu = *backEnds.cpu;
  ports::ThermalSensors& thermal = *backEnds.thermal;
  ports::PowerSources& power = *backEnds.power;
  ui::QtScheduler scheduler;
  linuxhost::ApplicationBundle bundle;
  linuxhost::KeyValueStore defaults{scheduler, linuxhost::KeyValueStore::defaultFile()};
  posix::Files files;
  posix::SerialQueue logQueue{linuxhost::lowerThreadPriority};
  linuxhost::SystemDescription system;
  posix::CrashCapture crashes{linuxhost::crashHost()};
  linuxhost::ProcessTable processes{calendar};
  posix::BackgroundWork background{scheduler};
  linuxhost::Workspace workspace{scheduler};
  linuxhost::DesktopShell desktop{scheduler, workspace};
  linuxhost::AudioOutputTap audioOutput{scheduler};
  QDBusConnection sessionBus =
      QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("vorli-desktop"));
  const DiagnosticsFolders diagnosticsFolders{linuxhost::logFolder(bundle.homeDirectory()),
                                              linuxhost::crashReportFolder(bundle.homeDirectory())};
  linuxhost::FileViewer fileViewer{sessionBus,
                                   linuxhost::LinkHandlers::Places::ofThisUser(bundle.homeDirectory())};
  const std::unique_ptr<ports::UserNotificationCenter> noticeCenter =
      noticesFor(bundle, sessionBus, scheduler);
  ports::UserNotificationCenter& notices = *noticeCenter;
  ui::GlobalHotkeys hotkeys{scheduler, sessionBus, ui::GlobalHotkeys::thisSession()};
  linuxhost::LoginItem loginItem{linuxhost::AutostartPlaces::ofThisSession(bundle.homeDirectory()),
                                 bundle.bundlePath()};
  ui::ManagerSelections selections;
  linuxhost::ApplicationIcons icons{linuxhost::ApplicationIcons::Places::ofThisUser(),
                                    [this] { return ui::iconThemeName(selections); }};
  ui::DesktopAppearance desktopAppearance{sessionBus, selections};
  ui::MotionPreference motion{selections};
  ui::X11Surroundings surroundings{desktopAppearance, selections, ui::WindowMotion{scheduler, motion}};
  ui::ApplicationHost application{bundle, surroundings};
  ui::KeyMonitor keys;
  linuxhost::LinkOpener links{linuxhost::LinkHandlers::Places::ofThisUser(bundle.homeDirectory())};
  ui::SettingsWindowController settingsWindow{surroundings};
  ui::SheetWindow crashReportWindow;
  ui::Pasteboard pasteboard;
  const ProductAddresses addresses{VORLI_FEEDBACK_ADDRESS, VORLI_MAKER_ADDRESS, VORLI_SUPPORT_ADDRESS,
                                   VORLI_INSTALL_ADDRESS};
  ui::UpdateFramework updates{
      systemBusForUpdates,
      scheduler,
      QString::fromStdString(bundle.bundlePath()),
      {.openUpdates = ui::openSoftwareCentreOnUpdates,
       .say = [this](const std::string& text) { application.showInfoAlert("Vorli", text); }}};
  linuxhost::SystemBus systemBus;
  std::shared_ptr<linuxhost::HelperNameWatch> helperName = linuxhost::HelperNameWatch::on(systemBus);
  linuxhost::HelperTransport helperTransport{scheduler, systemBus, helperName};
  linuxhost::HelperService helperService{scheduler, systemBus, helperName,
                                         linuxhost::HelperFiles(helperFolder(bundle.bundlePath())),
                                         [this](ports::AskedBy asker) { showHelper(asker); }};
  std::function<void()> showHelperPage;  // set once the core exists
  ui::PanelAppearance panelAppearance{selections, desktopAppearance,
                                      qEnvironmentVariable("XDG_CURRENT_DESKTOP")};
  ui::StatusItem statusItem{scheduler, sessionBus, selections, desktopAppearance, panelAppearance};
  ui::SheetWindow onboardingWindow;
  ui::OnboardingContent onboardingContent{onboardingWindow, surroundings, scheduler, motion};
  ui::PopoverWindow popover{scheduler, [this] { return statusItem.lastClick(); }, selections, surroundings};
  ui::GlowOverlay celebrationOverlay{scheduler, selections, [this] { return popover.nativeWindow(); }};
  ui::GlowOverlay edgeOverlay{scheduler, selections, [this] { return popover.nativeWindow(); }};
  linuxhost::Haptics haptics;
  linuxhost::StartupBackEnds startup{scheduler, bundle.homeDirectory()};

 private:
  static QDBusConnection systemBusForUpdates();
  static std::string helperFolder(const std::string& programPath);
  static std::unique_ptr<ports::UserNotificationCenter> noticesFor(const ports::ApplicationBundle& bundle,
                                                                   const QDBusConnection& sessionBus,
                                                                   Scheduler& scheduler);
  void showHelper(ports::AskedBy asker) const;
};

}  // namespace vorli

#pragma once

#include "app/AppDelegate.h"
#include "app/HostPorts.h"
#include "app/Services.h"
#include "base/Logger.h"
#include "posix/BackgroundWork.h"
#include "ui/windows/CrashReportSheet.h"
#include "ui/windows/StartupAppsPage.h"

#include <QApplication>
#include <QObject>
#include <QPixmapCache>
#include <memory>
#include <utility>

namespace vorli {

/// Sends the program's log lines to the system's log.
template <typename SystemLog>
void logToTheSystem() {
  // Owned by the sink, because a thread may still be logging when the program ends.
  Logger::setSink([log = std::make_shared<SystemLog>()](const LogRecord& record) { log->write(record); });
}

inline void prepareApplication(QApplication& application) {
  // The dial caches its own pictures, so Qt's default cache of 10 MB would only waste memory.
  constexpr int pixmapCacheKilobytes = 1024;
  application.setQuitOnLastWindowClosed(false);
  application.setApplicationName(QStringLiteral("Vorli"));
  QPixmapCache::setCacheLimit(pixmapCacheKilobytes);
}

/// The whole program on the back ends of a system, `Host`, whose members have the names of the ports. Its
/// parts are destroyed in the reverse order.
template <typename Host>
struct Program final : ViewHost {
  template <typename... Given>
  explicit Program(Given&&... given) : host(std::forward<Given>(given)...) {
    host.settingsWindow.setSneakyAppsPage([this](ui::Appearance appearance, QWidget* parent) {
      return new ui::StartupAppsPage(services.startupItems.view, startupAppsHost(), appearance, parent);
    });
    host.application.setTerminationHandler(
        [this] { return delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::now; });
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &lifetime,
                     [this](Qt::ApplicationState state) {
                       if (state == Qt::ApplicationActive)
                         services.notifications.post(ApplicationDidBecomeActive{});
                     });
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void installPopoverContent(PopoverView& view) override { host.popover.mount(view); }
  void installCrashReport(CrashReportView& view) override {
    host.crashReportWindow.take(new ui::CrashReportSheet(host.surroundings, view));
  }
  void showSettings(VorliSettingsView& view) override { host.settingsWindow.show(view); }

  /// Must be called when the main loop has ended.
  void finish() {
    delegate.applicationWillTerminate();
    host.popover.unmount();
    host.settingsWindow.close();
    host.defaults.synchronize();
  }

  ui::StartupAppsHost startupAppsHost() {
    return {host.scheduler, host.calendar, host.motion, host.icons,
            [this] { return std::make_unique<posix::BackgroundWork>(host.scheduler); }};
  }

  Host host;
  Services services{portsOf(host, *this)};
  AppDelegate delegate{services};
  const QObject lifetime;  // connections of the program end with it
};

}  // namespace vorli

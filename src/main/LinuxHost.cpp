#include "main/LinuxHost.h"

#include "base/Logger.h"
#include "linux/session/BusGreeting.h"
#include "linux/session/Sandbox.h"
#include "ui/linux/PortalNotificationCenter.h"
#include "ui/linux/UserNotificationCenter.h"

#include <filesystem>
#include <system_error>

namespace vorli {

namespace {

constexpr Logger hostLog{logSubsystem, "program"};
constexpr double systemBusLimitSeconds = 0.5;  // updates are not worth more of the start

}  // namespace

QDBusConnection LinuxHost::systemBusForUpdates() {
  const QString name = QStringLiteral("vorli-updates");
  if (linuxhost::greetsBack(linuxhost::systemBusAddress(), systemBusLimitSeconds))
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
  hostLog.error("the system bus does not answer; going on without updates");
  return QDBusConnection(name);
}

// Folder of the daemon and the program that registers it: the install location, or beside this program in a
// build tree.
std::string LinuxHost::helperFolder(const std::string& programPath) {
  const std::filesystem::path folder = std::filesystem::path(programPath).parent_path();
  const std::filesystem::path installed = (folder / "../libexec/vorli").lexically_normal();
  std::error_code failed;
  return (std::filesystem::exists(installed / "vorli-helper", failed) ? installed : folder).string();
}

std::unique_ptr<ports::UserNotificationCenter> LinuxHost::noticesFor(const ports::ApplicationBundle& bundle,
                                                                     const QDBusConnection& sessionBus,
                                                                     Scheduler& scheduler) {
  if (linuxhost::isSandboxed(bundle.bundlePath()))
    return std::make_unique<ui::PortalNotificationCenter>(sessionBus);
  return std::make_unique<ui::UserNotificationCenter>(sessionBus, scheduler);
}

// No window opens for a program that repairs its helper by itself.
void LinuxHost::showHelper(ports::AskedBy asker) const {
  if (asker == ports::AskedBy::user && showHelperPage) showHelperPage();
}

}  // namespace vorli

#include "linux/DesktopShell.h"

#include "base/Logger.h"

#include <QProcess>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <span>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr Logger logger{logSubsystem, "desktop"};

// `process` is the name in the kernel's table, which is cut after 15 bytes.
struct ShellProgram {
  std::string_view process;
  const char* command;
  std::array<const char*, 3> arguments;
};

constexpr std::array panels{
    ShellProgram{"xfce4-panel", "xfce4-panel", {"--restart"}},
    ShellProgram{"plasmashell", "systemctl", {"--user", "restart", "plasma-plasmashell.service"}},
    ShellProgram{"mate-panel", "mate-panel", {"--replace"}},
    ShellProgram{"cinnamon", "cinnamon", {"--replace"}},
    ShellProgram{"lxpanel", "lxpanelctl", {"restart"}},
};

constexpr std::array fileManagers{
    ShellProgram{"Thunar", "thunar", {"--quit"}},     ShellProgram{"thunar", "thunar", {"--quit"}},
    ShellProgram{"nautilus", "nautilus", {"--quit"}}, ShellProgram{"nemo", "nemo", {"--quit"}},
    ShellProgram{"caja", "caja", {"--quit"}},
};

std::set<std::string> ownProcessNames() {
  std::set<std::string> names;
  std::error_code failed;
  // Not a range: stepping on in one throws.
  for (std::filesystem::directory_iterator entry("/proc", failed), end; !failed && entry != end;
       entry.increment(failed)) {
    struct stat info {};
    if (stat(entry->path().c_str(), &info) != 0 || info.st_uid != getuid()) continue;
    std::string name;
    if (std::ifstream comm(entry->path() / "comm"); std::getline(comm, name)) names.insert(name);
  }
  return names;
}

void restartFirstRunning(std::span<const ShellProgram> programs) {
  const auto running = ownProcessNames();
  for (const auto& program : programs) {
    if (!running.contains(std::string(program.process))) continue;
    QStringList arguments;
    for (const char* argument : program.arguments) {
      if (argument) arguments << QString::fromLatin1(argument);
    }
    if (!QProcess::startDetached(QString::fromLatin1(program.command), arguments)) {
      logger.error("%{public}s could not be started", program.command);
    }
    return;
  }
}

}  // namespace

void DesktopShell::restartDock() {
  restartFirstRunning(panels);
}
void DesktopShell::restartFinder() {
  restartFirstRunning(fileManagers);
}

}  // namespace vorli::linuxhost

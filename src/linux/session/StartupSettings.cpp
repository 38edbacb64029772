#include "linux/session/StartupSettings.h"

#include "linux/session/DesktopLog.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <array>
#include <string_view>

namespace vorli::linuxhost {

namespace {

struct Page {
  std::string_view desktop;
  std::string_view program;
  std::string_view argument;
};

constexpr std::array knownPages{
    Page{"GNOME", "gnome-session-properties", ""},
    Page{"GNOME", "gnome-tweaks", ""},
    Page{"GNOME", "gnome-control-center", "applications"},
    Page{"KDE", "systemsettings", "kcm_autostart"},
    Page{"KDE", "systemsettings5", "kcm_autostart"},
    Page{"XFCE", "xfce4-session-settings", ""},
    Page{"MATE", "mate-session-properties", ""},
    Page{"X-Cinnamon", "cinnamon-settings", "startup"},
    Page{"Cinnamon", "cinnamon-settings", "startup"},
    Page{"LXQt", "lxqt-config-session", ""},
    Page{"LXDE", "lxsession-edit", ""},
    Page{"Budgie", "budgie-desktop-settings", ""},
};

}  // namespace

std::vector<std::vector<std::string>> startupPages(const std::vector<std::string>& desktops) {
  std::vector<std::vector<std::string>> commands;
  for (const auto& desktop : desktops) {
    for (const auto& page : knownPages) {
      if (page.desktop != desktop) continue;
      commands.push_back({std::string(page.program)});
      if (!page.argument.empty()) commands.back().emplace_back(page.argument);
    }
  }
  return commands;
}

void StartupSettings::open() {
  for (const auto& command : startupPages(desktops_)) {
    const auto program = QStandardPaths::findExecutable(QString::fromStdString(command.front()));
    if (program.isEmpty()) continue;
    QStringList arguments;
    for (std::size_t i = 1; i < command.size(); ++i) arguments << QString::fromStdString(command[i]);
    if (QProcess::startDetached(program, arguments)) return;
  }
  desktopLog.error("this desktop has no page of startup applications");
}

}  // namespace vorli::linuxhost

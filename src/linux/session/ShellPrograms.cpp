#include "linux/session/ShellPrograms.h"

namespace vorli::linuxhost {

namespace {

constexpr std::array panels{
    ShellProgram{"xfce4-panel", {"xfce4-panel", "--restart"}},
    ShellProgram{"plasmashell", {}, "plasma-plasmashell.service"},
    ShellProgram{"mate-panel", {"mate-panel", "--replace"}},
    ShellProgram{"gnome-panel", {"gnome-panel", "--replace"}},
    ShellProgram{"budgie-panel", {"budgie-panel", "--replace"}},
    ShellProgram{"cinnamon", {"cinnamon", "--replace"}},
    ShellProgram{"lxpanel", {"lxpanelctl", "restart"}},
    ShellProgram{"lxqt-panel"},
    ShellProgram{"tint2"},
    ShellProgram{"plank"},
};

constexpr std::array fileManagers{
    ShellProgram{"Thunar"},
    ShellProgram{.processName = "thunar", .displayName = "Thunar"},
    ShellProgram{.processName = "nautilus", .displayName = "Files"},
    ShellProgram{.processName = "nemo", .displayName = "Nemo"},
    ShellProgram{.processName = "caja", .displayName = "Caja"},
    ShellProgram{.processName = "dolphin", .displayName = "Dolphin"},
    ShellProgram{.processName = "pcmanfm-qt", .displayName = "PCManFM-Qt"},
    ShellProgram{.processName = "pcmanfm", .displayName = "PCManFM"},
    ShellProgram{.processName = "io.elementary.f", .displayName = "Files"},
};

}  // namespace

std::string_view nameOf(const ShellProgram& program) {
  return program.displayName.empty() ? program.processName : program.displayName;
}

std::span<const ShellProgram> shellPanels() {
  return panels;
}

std::span<const ShellProgram> shellFileManagers() {
  return fileManagers;
}

}  // namespace vorli::linuxhost

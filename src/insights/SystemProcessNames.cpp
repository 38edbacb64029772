#include "insights/SystemProcessNames.h"

#include "base/HostSystem.h"

#include <algorithm>
#include <array>

namespace vorli {

namespace {

using namespace std::string_view_literals;

constexpr std::array macOSNames{
    "kernel_task"sv,     "windowserver"sv,   "loginwindow"sv,
    "launchd"sv,         "logd"sv,           "fseventsd"sv,
    "coreaudiod"sv,      "mds_stores"sv,     "mds"sv,
    "syslogd"sv,         "spotlight"sv,      "powerd"sv,
    "configd"sv,         "trustd"sv,         "nsurlsessiond"sv,
    "useventagent"sv,    "cloudd"sv,         "bird"sv,
    "softwareupdated"sv, "rapportd"sv,       "warmd"sv,
    "appleh13camerad"sv, "mediaanalysisd"sv, "knowledge-agent"sv,
    "duetexpertd"sv,     "vorli"sv,          "com.kv.vorli.helper"sv,
};

// The kernel cuts a short name at 15 bytes: longer ones stand here as it shows them.
constexpr std::array linuxNames{
    "accounts-daemon"sv, "avahi-daemon"sv,   "bluetoothd"sv,   "cinnamon"sv,
    "colord"sv,          "cupsd"sv,          "dbus-broker"sv,  "dbus-daemon"sv,
    "gnome-shell"sv,     "hyprland"sv,       "init"sv,         "kglobalaccel5"sv,
    "kglobalacceld"sv,   "krunner"sv,        "ksmserver"sv,    "labwc"sv,
    "lightdm"sv,         "lxqt-panel"sv,     "lxqt-session"sv, "marco"sv,
    "mate-panel"sv,      "modemmanager"sv,   "muffin"sv,       "mutter"sv,
    "networkmanager"sv,  "openbox"sv,        "packagekitd"sv,  "picom"sv,
    "plasmashell"sv,     "polkitd"sv,        "rtkit-daemon"sv, "sddm"sv,
    "snapd"sv,           "ssh-agent"sv,      "sway"sv,         "systemd"sv,
    "udisksd"sv,         "upowerd"sv,        "vorli"sv,        "vorli-helper"sv,
    "weston"sv,          "wpa_supplicant"sv, "xfce4-panel"sv,  "xfce4-session"sv,
    "xfdesktop"sv,       "xfsettingsd"sv,    "xfwm4"sv,        "xorg"sv,
    "xwayland"sv,
};
constexpr std::array linuxFamilies{
    "at-spi"sv,
    "baloo_file"sv,
    "evolution-"sv,
    "fcitx"sv,
    "gdm"sv,
    "gnome-keyring"sv,
    "gnome-session"sv,
    "goa-"sv,
    "gsd-"sv,
    "gvfsd"sv,
    "ibus-"sv,
    "kded"sv,
    "kwin_"sv,
    "pipewire"sv,
    "polkit-"sv,
    "pulseaudio"sv,
    "systemd-"sv,
    "tracker-"sv,
    "wireplumber"sv,
    "xdg-desktop-por"sv,
    "xdg-document-po"sv,
    "xdg-permission-"sv,
};

}  // namespace

constexpr SystemProcessNames SystemProcessNames::macOS{macOSNames, {}};
constexpr SystemProcessNames SystemProcessNames::linuxDesktop{linuxNames, linuxFamilies};

const SystemProcessNames& SystemProcessNames::ofThisSystem() {
  return hostSystem == HostSystem::macOS ? macOS : linuxDesktop;
}

bool SystemProcessNames::contains(std::string_view lowercasedName) const {
  return std::ranges::find(names, lowercasedName) != names.end() ||
         std::ranges::any_of(families, [=](auto family) { return lowercasedName.starts_with(family); });
}

}  // namespace vorli

#include "insights/SystemProcessNames.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::string_view macOSNames[] = {
    "kernel_task",     "windowserver",   "loginwindow",
    "launchd",         "logd",           "fseventsd",
    "coreaudiod",      "mds_stores",     "mds",
    "syslogd",         "spotlight",      "powerd",
    "configd",         "trustd",         "nsurlsessiond",
    "useventagent",    "cloudd",         "bird",
    "softwareupdated", "rapportd",       "warmd",
    "appleh13camerad", "mediaanalysisd", "knowledge-agent",
    "duetexpertd",     "vorli",          "com.kv.vorli.helper",
};

// The kernel truncates short names to 15 bytes, so longer names are listed truncated.
constexpr std::string_view linuxNames[] = {
    "accounts-daemon", "avahi-daemon",  "bluetoothd",  "cinnamon",     "colord",      "cupsd",
    "dbus-broker",     "dbus-daemon",   "gnome-shell", "hyprland",     "init",        "kglobalaccel5",
    "kglobalacceld",   "krunner",       "ksmserver",   "labwc",        "lightdm",     "lxqt-panel",
    "lxqt-session",    "marco",         "mate-panel",  "modemmanager", "muffin",      "mutter",
    "networkmanager",  "openbox",       "packagekitd", "picom",        "plasmashell", "polkitd",
    "rtkit-daemon",    "sddm",          "snapd",       "ssh-agent",    "sway",        "systemd",
    "udisksd",         "upowerd",       "vorli",       "vorli-helper", "weston",      "wpa_supplicant",
    "xfce4-panel",     "xfce4-session", "xfdesktop",   "xfsettingsd",  "xfwm4",       "xorg",
    "xwayland",
};
constexpr std::string_view linuxFamilies[] = {
    "at-spi",
    "baloo_file",
    "evolution-",
    "fcitx",
    "gdm",
    "gnome-keyring",
    "gnome-session",
    "goa-",
    "gsd-",
    "gvfsd",
    "ibus-",
    "kded",
    "kwin_",
    "pipewire",
    "polkit-",
    "pulseaudio",
    "systemd-",
    "tracker-",
    "wireplumber",
    "xdg-desktop-por",
    "xdg-document-po",
    "xdg-permission-",
};

}  // namespace

constexpr SystemProcessNames SystemProcessNames::macOS{macOSNames, {}};
constexpr SystemProcessNames SystemProcessNames::linuxDesktop{linuxNames, linuxFamilies};

bool SystemProcessNames::contains(std::string_view lowercasedName) const {
  return std::ranges::find(names, lowercasedName) != names.end() ||
         std::ranges::any_of(families, [=](auto family) { return lowercasedName.starts_with(family); });
}

}  // namespace vorli

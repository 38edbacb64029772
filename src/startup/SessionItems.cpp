#include "startup/SessionItems.h"

#include "base/UnicodeText.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::string_view ownPrefixes[] = {"com.kv.vorli", "vorli-", "vorli."};

// Beginnings of identifiers, in lower case. Units keep their suffix, so a dot after a name ends the name.
constexpr std::string_view sessionPrefixes[] = {
    // desktops and their sessions
    "org.freedesktop.",
    "org.gnome.settingsdaemon",
    "org.gnome.shell",
    "gnome-keyring",
    "gnome-session",
    "gnome-initial-setup",
    "gnome-shell",
    "org.kde.plasma",
    "plasma-",
    "kded",
    "kaccess",
    "powerdevil",
    "polkit-",
    "xfce4-",
    "xfsettingsd",
    "xfconfd",
    "mate-",
    "cinnamon-settings-daemon",
    "csd-",
    "lxqt-",
    "lxsession",
    "lxpolkit",
    "at-spi-",
    "gdm",
    "lightdm",
    "sddm",
    "lxdm",
    "display-manager",
    "plymouth",
    "light-locker",
    "xscreensaver",
    // sound, keys, files
    "pulseaudio",
    "pipewire",
    "wireplumber",
    "filter-chain",
    "alsa-",
    "rtkit-",
    "gpg-agent",
    "dirmngr",
    "ssh-agent",
    "gcr-",
    "p11-kit",
    "gvfs-",
    "udisks2",
    "keyboxd",
    // infrastructure of a session
    "xdg-",
    "systemd-",
    "dbus",
    "polkit",
    "tracker-",
    "glib-pacrunner",
    "pk-debconf-helper",
    "dconf",
    "im-launch",
    "user-dirs",
    "snap-userd-autostart",
    "spice-vdagent",
    "at-spi2",
    // infrastructure of the system
    "getty@",
    "serial-getty@",
    "console-",
    "keyboard-setup",
    "networkmanager",
    "networking.",
    "wpa_supplicant",
    "iwd.",
    "ifup",
    "modemmanager",
    "connman",
    "resolvconf",
    "upower",
    "power-profiles-daemon",
    "accounts-daemon",
    "avahi-daemon",
    "cron.",
    "crond.",
    "cronie.",
    "anacron",
    "atd.",
    "rsyslog",
    "syslog",
    "auditd",
    "apparmor",
    "e2scrub",
    "fstrim",
    "apt-daily",
    "man-db",
    "logrotate",
    "dpkg-db-backup",
    "lvm2-",
    "blk-availability",
    "mdmonitor",
    "mdadm",
    "multipathd",
    "cryptdisks",
    "nfs-",
    "rpcbind",
    "remote-fs",
    "open-iscsi",
    "iscsid",
    "ssl-cert",
    "chrony",
    "ntp.",
    "ntpd.",
    "ntpsec.",
    "irqbalance",
    "thermald",
    "acpid",
    "bolt.",
    "fwupd",
    "grub-",
    "secureboot-db",
    "pppd-dns",
    "qemu-guest-agent",
    "open-vm-tools",
    "hv-",
    "virtualbox-guest",
    "cloud-",
    "snapd.apparmor",
    "snapd.seeded",
    "snapd.autoimport",
    "ua-",
    "ubuntu-advantage",
    "selinux-",
    "firewalld",
    "ufw.",
    "nftables",
    "netfilter-persistent",
    "switcheroo-control",
    "colord",
    "smartmontools",
    "smartd",
};

bool beginsWithAny(std::string_view text, auto& beginnings) {
  if (text.empty()) return false;
  return std::ranges::any_of(beginnings, [text, first = text.front()](std::string_view beginning) {
    return beginning.front() == first && text.starts_with(beginning);
  });
}

bool isThirdParty(std::string_view program, std::string_view home) {
  constexpr std::string_view folders[] = {"/opt/", "/usr/local/", "/home/", "/srv/"};
  if (beginsWithAny(program, folders)) return true;
  return !home.empty() && program.starts_with(home) && program.substr(home.size()).starts_with('/');
}

}  // namespace

bool isOwnItem(std::string_view identifier) {
  return beginsWithAny(lowercased(identifier), ownPrefixes);
}

bool keepsSessionAlive(const RawCandidate& candidate, std::string_view home) {
  if (candidate.programPath && isThirdParty(*candidate.programPath, home)) return false;
  return beginsWithAny(lowercased(candidate.identifier), sessionPrefixes);
}

}  // namespace vorli

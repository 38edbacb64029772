#include "insights/ApplicationPathRules.h"

#include "base/HostSystem.h"

#include <array>

namespace vorli {

namespace {

using namespace std::string_view_literals;
using Kind = ApplicationPathRules::Kind;

namespace macOSRules {
constexpr std::array applications{"/Applications/"sv};
constexpr std::array applicationsInHome{"/Applications/"sv};
constexpr std::array systemApplications{"/System/Applications/"sv};
constexpr std::array excludedPrefixes{"/System/"sv, "/usr/"sv, "/Library/Apple/"sv, "/private/var/db/"sv};
constexpr std::array excludedWords{"Sparkle"sv, "Autoupdate"sv, "Installer"sv, "com.kv.vorli.helper"sv};
}  // namespace macOSRules

namespace linuxRules {
// The last is where an AppImage mounts itself. A flatpak's processes see their own program below /app, and
// end with it; its files on the host lie below the flatpak folders.
constexpr std::array applications{
    "/opt/"sv, "/snap/"sv, "/var/lib/snapd/snap/"sv, "/var/lib/flatpak/app/"sv, "/tmp/.mount_"sv,
};
constexpr std::array applicationsInHome{
    "/Applications/"sv, "/.local/opt/"sv,   "/.local/share/flatpak/app/"sv,
    "/.local/bin/"sv,   "/.local/share/"sv, "/.local/lib/"sv,
};
constexpr std::array systemApplications{
    "/app/"sv,
    "/usr/bin/"sv,
    "/usr/games/"sv,
    "/usr/lib/"sv,
    "/usr/lib/aarch64-linux-gnu/"sv,
    "/usr/lib/i386-linux-gnu/"sv,
    "/usr/lib/x86_64-linux-gnu/"sv,
    "/usr/lib64/"sv,
    "/usr/libexec/"sv,
    "/usr/local/bin/"sv,
    "/usr/local/lib/"sv,
    "/usr/local/share/"sv,
    "/usr/share/"sv,
};
constexpr std::array excludedPrefixes{
    "/usr/"sv,         "/bin/"sv,         "/sbin/"sv,        "/lib/"sv,
    "/snap/bare/"sv,   "/snap/core/"sv,   "/snap/core18/"sv, "/snap/core20/"sv,
    "/snap/core22/"sv, "/snap/core24/"sv, "/snap/snapd/"sv,
};
constexpr std::array excludedWords{
    "Sparkle"sv,      "Autoupdate"sv, "Installer"sv, "com.kv.vorli.helper"sv,
    "vorli-helper"sv, "autoupdate"sv, "installer"sv, "updater"sv,
};
// The user's service manager, and a session that makes itself the parent of what its programs leave.
constexpr std::array adopters{"systemd"sv, "lxqt-session"sv};
}  // namespace linuxRules

}  // namespace

constexpr ApplicationPathRules ApplicationPathRules::macOS{
    Kind::bundles,
    macOSRules::applications,
    macOSRules::applicationsInHome,
    macOSRules::systemApplications,
    macOSRules::excludedPrefixes,
    macOSRules::excludedWords,
    {},
};
constexpr ApplicationPathRules ApplicationPathRules::linuxDesktop{
    Kind::folders,
    linuxRules::applications,
    linuxRules::applicationsInHome,
    linuxRules::systemApplications,
    linuxRules::excludedPrefixes,
    linuxRules::excludedWords,
    linuxRules::adopters,
};

const ApplicationPathRules& ApplicationPathRules::ofThisSystem() {
  return hostSystem == HostSystem::macOS ? macOS : linuxDesktop;
}

}  // namespace vorli

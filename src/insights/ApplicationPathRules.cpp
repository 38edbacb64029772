#include "insights/ApplicationPathRules.h"

namespace vorli {

namespace {

using Kind = ApplicationPathRules::Kind;

namespace macOSRules {
constexpr std::string_view applications[] = {"/Applications/"};
constexpr std::string_view applicationsInHome[] = {"/Applications/"};
constexpr std::string_view systemApplications[] = {"/System/Applications/"};
constexpr std::string_view excludedPrefixes[] = {"/System/", "/usr/", "/Library/Apple/", "/private/var/db/"};
constexpr std::string_view excludedWords[] = {"Sparkle", "Autoupdate", "Installer", "com.kv.vorli.helper"};
}  // namespace macOSRules

namespace linuxRules {
// The last one is where an AppImage mounts itself. Processes of a flatpak see their own program below /app
// and end with it; its files on the host are below the flatpak folders.
constexpr std::string_view applications[] = {
    "/opt/", "/snap/", "/var/lib/snapd/snap/", "/var/lib/flatpak/app/", "/tmp/.mount_",
};
constexpr std::string_view applicationsInHome[] = {
    "/Applications/", "/.local/opt/",   "/.local/share/flatpak/app/",
    "/.local/bin/",   "/.local/share/", "/.local/lib/",
};
constexpr std::string_view systemApplications[] = {
    "/app/",
    "/usr/bin/",
    "/usr/games/",
    "/usr/lib/",
    "/usr/lib/aarch64-linux-gnu/",
    "/usr/lib/i386-linux-gnu/",
    "/usr/lib/x86_64-linux-gnu/",
    "/usr/lib64/",
    "/usr/libexec/",
    "/usr/local/bin/",
    "/usr/local/lib/",
    "/usr/local/share/",
    "/usr/share/",
};
constexpr std::string_view excludedPrefixes[] = {
    "/usr/",         "/bin/",         "/sbin/",        "/lib/",         "/snap/bare/",  "/snap/core/",
    "/snap/core18/", "/snap/core20/", "/snap/core22/", "/snap/core24/", "/snap/snapd/",
};
constexpr std::string_view excludedWords[] = {
    "Sparkle",      "Autoupdate", "Installer", "com.kv.vorli.helper",
    "vorli-helper", "autoupdate", "installer", "updater",
};
// The user's service manager, and a session that adopts the orphaned processes of its programs.
constexpr std::string_view adopters[] = {"systemd", "lxqt-session"};
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

}  // namespace vorli

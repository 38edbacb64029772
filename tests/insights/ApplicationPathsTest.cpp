#include "insights/ApplicationPaths.h"

namespace vorli {
namespace {

using Places = std::vector<std::string_view>;

const ApplicationPaths macPaths{"/Users/me", ApplicationPathRules::macOS};
const ApplicationPaths linuxPaths{"/home/me", ApplicationPathRules::linuxDesktop};

TEST(ApplicationPathsTest, aBundleMustLieInAnApplicationsFolderItself) {
  const std::pair<const char*, Places> cases[] = {
      {"/Applications/Foo.app/Contents/MacOS/foo-agent", {"/Applications/Foo.app"}},
      {"/Applications/Foo.app", {"/Applications/Foo.app"}},
      {"/Applications/Foo.2.app/Contents/x", {"/Applications/Foo.2.app"}},
      {"/Users/me/Applications/Foo.app/Contents/MacOS/foo", {"/Users/me/Applications/Foo.app"}},
      // The innermost bundle decides, and there is no further walk upward.
      {"/Applications/Foo.app/Contents/Frameworks/Foo Helper.app/Contents/MacOS/Foo Helper", {}},
      {"/Applications/Tools/Foo.app/Contents/MacOS/foo", {}},
      {"/Users/you/Applications/Foo.app/Contents/MacOS/foo", {}},
      {"/System/Applications/Foo.app/Contents/MacOS/foo", {}},
      {"/Applications/foo", {}},
      {"/Applications/.app/Contents/MacOS/foo", {}},
      {"/Applications/Foo.APP/Contents/MacOS/foo", {}},
      {"/Applications/Foo.apps/Contents/MacOS/foo", {}},
      {"/Applications/Fooapp/Contents/MacOS/foo", {}},
      {"/Foo.app/Contents/MacOS/foo", {}},
      {"/ApplicationsFoo.app/foo", {}},
      {"/opt/homebrew/bin/foo", {}},
      {"/Applications/", {}},
      {"/", {}},
      {"", {}},
  };
  for (const auto& [path, places] : cases) EXPECT_EQ(macPaths.enclosingApplications(path), places) << path;
}

TEST(ApplicationPathsTest, foldersAreTriedFromTheInnermostUpToTheOneInTheApplicationsFolder) {
  const std::pair<const char*, Places> cases[] = {
      {"/opt/Foo/foo-agent", {"/opt/Foo"}},
      {"/opt/google/chrome/chrome_crashpad_handler", {"/opt/google/chrome", "/opt/google"}},
      {"/snap/foo/123/usr/bin/foo",
       {"/snap/foo/123/usr/bin", "/snap/foo/123/usr", "/snap/foo/123", "/snap/foo"}},
      {"/var/lib/snapd/snap/foo/1/foo", {"/var/lib/snapd/snap/foo/1", "/var/lib/snapd/snap/foo"}},
      {"/var/lib/flatpak/app/org.example.Foo/current/foo",
       {"/var/lib/flatpak/app/org.example.Foo/current", "/var/lib/flatpak/app/org.example.Foo"}},
      {"/tmp/.mount_FooBarXyZ123/usr/foo", {"/tmp/.mount_FooBarXyZ123/usr", "/tmp/.mount_FooBarXyZ123"}},
      {"/home/me/Applications/Foo/foo", {"/home/me/Applications/Foo"}},
      {"/home/me/.local/opt/Foo/foo", {"/home/me/.local/opt/Foo"}},
      {"/home/me/.local/share/Foo/bin/foo", {"/home/me/.local/share/Foo/bin", "/home/me/.local/share/Foo"}},
      {"/home/me/.local/share/flatpak/app/org.example.Foo/foo",
       {"/home/me/.local/share/flatpak/app/org.example.Foo"}},
      // A program beside the applications belongs to none of them.
      {"/opt/foo", {}},
      {"/home/me/.local/bin/foo", {}},
      {"/tmp/foo/foo", {}},
      {"/home/you/.local/opt/Foo/foo", {}},
      {"/home/me/projects/foo/foo", {}},
      {"/usr/lib/foo/foo", {}},
      {"/app/bin/foo", {}},
      {"/opt/", {}},
      {"", {}},
  };
  for (const auto& [path, places] : cases) EXPECT_EQ(linuxPaths.enclosingApplications(path), places) << path;
}

TEST(ApplicationPathsTest, excludedPathsBeginOrContainWhatTheRulesName) {
  for (const char* path :
       {"/System/Applications/Foo.app/x", "/usr/libexec/foo", "/Library/Apple/foo", "/private/var/db/foo",
        "/Applications/Foo.app/Contents/Library/Sparkle/Updater", "/Applications/Foo.app/Autoupdate",
        "/Applications/Foo Installer.app/x", "/Library/PrivilegedHelperTools/com.kv.vorli.helper"}) {
    EXPECT_TRUE(macPaths.isExcluded(path)) << path;
  }
  for (const char* path : {"/Applications/Foo.app/Contents/MacOS/foo", "/Systems/foo", "/Users/me/usr/foo",
                           "/Applications/sparkle.app/x", "/Library/Foo", "/Applications/Foo.app/updater"}) {
    EXPECT_FALSE(macPaths.isExcluded(path)) << path;
  }
  for (const char* path : {"/usr/lib/foo/foo", "/bin/foo", "/snap/core22/1/usr/bin/foo", "/snap/snapd/1/foo",
                           "/opt/foo/vorli-helper", "/opt/foo/foo-installer", "/opt/Foo/updater"}) {
    EXPECT_TRUE(linuxPaths.isExcluded(path)) << path;
  }
  for (const char* path : {"/opt/Foo/foo", "/snap/corefonts/1/foo", "/home/me/.local/share/Foo/foo"}) {
    EXPECT_FALSE(linuxPaths.isExcluded(path)) << path;
  }
}

TEST(ApplicationPathsTest, theOutermostBundleGivesTheName) {
  using Name = std::optional<std::string_view>;
  const std::pair<const char*, Name> cases[] = {
      {"/Applications/Notes.app/Contents/MacOS/Notes", "Notes"},
      {"/Applications/Tools/Foo.app/Contents/MacOS/foo", "Foo"},
      {"/System/Applications/Mail.app/Contents/MacOS/Mail", "Mail"},
      {"/Users/me/Applications/Foo Bar.app/x", "Foo Bar"},
      {"/Applications/Google Chrome.app/Contents/Frameworks/Helper.app/Contents/x", "Google Chrome"},
      {"/Applications/Foo.app", std::nullopt},
      {"/Applications/.app/x", std::nullopt},
      {"/Applications/foo/bar", std::nullopt},
      {"/Library/Foo.app/Contents/x", std::nullopt},
      {"/Users/you/Applications/Foo.app/x", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [path, name] : cases) EXPECT_EQ(macPaths.bundleName(path), name) << path;
  EXPECT_EQ(linuxPaths.bundleName("/opt/Notes.app/x"), std::nullopt);
}

TEST(ApplicationPathsTest, aProgramIsNamedByItselfAndTheFoldersAroundIt) {
  const std::pair<const char*, Places> cases[] = {
      {"/usr/bin/foo", {"/usr/bin/foo"}},
      {"/usr/lib/firefox/firefox", {"/usr/lib/firefox/firefox", "/usr/lib/firefox"}},
      {"/usr/lib/x86_64-linux-gnu/foo/bar",
       {"/usr/lib/x86_64-linux-gnu/foo/bar", "/usr/lib/x86_64-linux-gnu/foo"}},
      {"/opt/Foo/foo", {"/opt/Foo/foo", "/opt/Foo"}},
      {"/app/lib/foo/foo", {"/app/lib/foo/foo", "/app/lib/foo", "/app/lib"}},
      {"/home/me/tools/foo/foo", {"/home/me/tools/foo/foo"}},
  };
  for (const auto& [path, places] : cases) EXPECT_EQ(linuxPaths.namingPlaces(path), places) << path;
  EXPECT_EQ(macPaths.namingPlaces("/Applications/Foo.app/x"), Places());
}

TEST(ApplicationPathsTest, onlyOneSystemHandsOrphansToAnotherProcessThanTheFirst) {
  EXPECT_TRUE(ApplicationPathRules::macOS.adopters.empty());
  EXPECT_EQ(Places(ApplicationPathRules::linuxDesktop.adopters.begin(),
                   ApplicationPathRules::linuxDesktop.adopters.end()),
            (Places{"systemd", "lxqt-session"}));
}

}  // namespace
}  // namespace vorli

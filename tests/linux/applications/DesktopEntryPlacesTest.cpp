#include "linux/applications/DesktopEntryPlaces.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

namespace vorli::linuxhost {
namespace {

using Texts = std::vector<std::string>;

// Sets the variables that the places depend on, and restores them at the end.
struct DesktopEntryPlacesTest : testing::Test {
  DesktopEntryPlacesTest() {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_DATA_DIRS", "PATH", "LC_ALL", "LC_MESSAGES",
                             "LANG", "LANGUAGE", "XDG_CURRENT_DESKTOP"}) {
      const char* value = std::getenv(name);
      before[name] = value ? std::optional<std::string>(value) : std::nullopt;
      unsetenv(name);
    }
    set("HOME", "/home/me");
  }
  ~DesktopEntryPlacesTest() override {
    for (const auto& [name, value] : before) {
      if (value) {
        set(name.c_str(), value->c_str());
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  void set(const char* name, const char* value) { setenv(name, value, 1); }
  static DesktopEntryPlaces places() { return DesktopEntryPlaces::ofThisUser(); }

  std::map<std::string, std::optional<std::string>> before;
};

TEST_F(DesktopEntryPlacesTest, withoutVariablesTheUsualFoldersAreRead) {
  EXPECT_EQ(
      places().folders,
      (Texts{"/home/me/.local/share/applications", "/home/me/.local/share/flatpak/exports/share/applications",
             "/usr/local/share/applications", "/usr/share/applications",
             "/var/lib/flatpak/exports/share/applications", "/var/lib/snapd/desktop/applications"}));
  EXPECT_EQ(places().programPath, (Texts{"/usr/local/bin", "/usr/bin", "/bin"}));
  EXPECT_EQ(places().locales, Texts{});
  EXPECT_EQ(places().desktops, Texts{});
}

TEST_F(DesktopEntryPlacesTest, aFolderIsTheSameWithAndWithoutASlashAtItsEnd) {
  set("XDG_DATA_HOME", "/home/me/data//");
  set("XDG_DATA_DIRS",
      "relative:/usr/share/xfce4:/usr/local/share/:/usr/share/:/usr/share::/var/lib/snapd/desktop/");
  EXPECT_EQ(
      places().folders,
      (Texts{"/home/me/data/applications", "/home/me/data/flatpak/exports/share/applications",
             "/usr/share/xfce4/applications", "/usr/local/share/applications", "/usr/share/applications",
             "/var/lib/snapd/desktop/applications", "/var/lib/flatpak/exports/share/applications"}));
  set("XDG_DATA_HOME", "relative");
  EXPECT_EQ(places().folders.front(), "/home/me/.local/share/applications");
}

TEST_F(DesktopEntryPlacesTest, theListOfLanguagesCountsBeforeTheLocale) {
  set("LANG", "en_US.UTF-8");
  EXPECT_EQ(places().locales, (Texts{"en_US", "en"}));
  set("LANGUAGE", "de_AT:de:en");
  EXPECT_EQ(places().locales, (Texts{"de_AT", "de", "en"}));
  set("LC_ALL", "C");
  EXPECT_EQ(places().locales, Texts{});
}

TEST_F(DesktopEntryPlacesTest, theDesktopMayHaveSeveralNames) {
  set("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
  EXPECT_EQ(places().desktops, (Texts{"ubuntu", "GNOME"}));
}

}  // namespace
}  // namespace vorli::linuxhost

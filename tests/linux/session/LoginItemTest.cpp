#include "linux/session/LoginItem.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;

struct LoginItemTest : testing::Test {
  LoginItemTest() {
    std::string pattern = fs::temp_directory_path() / "vorli-login-XXXXXX";
    root = mkdtemp(pattern.data());
    fs::create_directories(root / "etc/autostart");
    place("bin/vorli", "a program");
    fs::permissions(root / "bin/vorli", fs::perms::owner_all);
  }
  ~LoginItemTest() override { fs::remove_all(root); }

  fs::path root;
  fs::path user() const { return root / "home/.config/autostart"; }
  fs::path own() const { return user() / "com.kv.vorli.desktop"; }
  std::string program() const { return (root / "bin/vorli").string(); }

  LoginItem item(const char* desktop = "XFCE") const {
    return LoginItem({user(), {root / "etc/autostart"}, {desktop}}, program());
  }
  void place(const fs::path& file, const std::string& text) const {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << text;
  }
  static std::string textOf(const fs::path& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator(in), {}};
  }
  std::string entry(const std::string& lines = "") const {
    return "[Desktop Entry]\nType=Application\nName=Vorli\nExec=" + program() + "\n" + lines;
  }
};

TEST(AutostartPlacesTest, theUsersFolderIsInTheGivenHomeUnlessTheVariableNamesAnother) {
  const char* const before = std::getenv("XDG_CONFIG_HOME");
  const std::string kept = before ? before : "";
  setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(AutostartPlaces::ofThisSession("/home/kim").user, "/home/kim/.config/autostart");
  setenv("XDG_CONFIG_HOME", "/config/", 1);
  EXPECT_EQ(AutostartPlaces::ofThisSession("/home/kim").user, "/config/autostart");
  before ? setenv("XDG_CONFIG_HOME", kept.c_str(), 1) : unsetenv("XDG_CONFIG_HOME");
}

TEST_F(LoginItemTest, startsUnregistered) {
  EXPECT_EQ(item().status(), 0);
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_FALSE(fs::exists(user()));
}

TEST_F(LoginItemTest, registersInTheUsersFolderAndLeavesNothingElse) {
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(item().status(), 1);
  EXPECT_EQ(std::distance(fs::directory_iterator(user()), {}), 1);
  EXPECT_NE(textOf(own()).find("Exec=\"" + program() + "\"\n"), std::string::npos);
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_FALSE(fs::exists(own()));
  EXPECT_EQ(item().status(), 0);
}

TEST_F(LoginItemTest, registeringAgainTouchesNothing) {
  EXPECT_TRUE(item().registerItem().has_value());
  const auto edited = textOf(own()) + "X-Mine=1\n";
  std::ofstream(own()) << edited;
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(textOf(own()), edited);
}

TEST_F(LoginItemTest, aHiddenEntryWasRemovedByTheUserAndComesBack) {
  place("home/.config/autostart/com.kv.vorli.desktop", entry("Hidden=true\n"));
  EXPECT_EQ(item().status(), 0);
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(item().status(), 1);
}

TEST_F(LoginItemTest, aSwitchThatOnlySomeSessionsReadCountsInThose) {
  place("home/.config/autostart/com.kv.vorli.desktop", entry("X-GNOME-Autostart-enabled=false\n"));
  EXPECT_EQ(item("XFCE").status(), 1);
  EXPECT_EQ(item("MATE").status(), 0);
  EXPECT_TRUE(item("MATE").registerItem().has_value());
  EXPECT_EQ(item("MATE").status(), 1);
}

TEST_F(LoginItemTest, aMaskedEntryComesBackAndTheMaskIsNotWrittenThrough) {
  fs::create_directories(user());
  place("etc/autostart/com.kv.vorli.desktop", entry());
  fs::create_symlink("/dev/null", own());
  EXPECT_EQ(item().status(), 0);
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(item().status(), 1);
  EXPECT_FALSE(fs::is_symlink(own()));
}

TEST_F(LoginItemTest, movesWithTheProgram) {
  place("home/.config/autostart/com.kv.vorli.desktop",
        "[Desktop Entry]\nType=Application\nName=Vorli\nExec=/old/place/vorli\n");
  EXPECT_EQ(item().status(), 0);
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(item().status(), 1);
  EXPECT_EQ(textOf(own()).find("/old/place"), std::string::npos);
}

TEST_F(LoginItemTest, anEntryOfTheSystemNeedsNoEntryOfTheUser) {
  place("etc/autostart/vorli-for-all.desktop", entry());
  EXPECT_EQ(item().status(), 1);
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_FALSE(fs::exists(user()));
}

TEST_F(LoginItemTest, anEntryOfTheSystemIsMaskedForThisUser) {
  for (const char* name : {"vorli-for-all.desktop", "com.kv.vorli.desktop"})
    place(fs::path("etc/autostart") / name, entry());
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_EQ(item().status(), 0);
  EXPECT_NE(textOf(own()).find("Hidden=true\n"), std::string::npos);
  EXPECT_EQ(textOf(root / "etc/autostart/com.kv.vorli.desktop"), entry());
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_EQ(item().status(), 1);
  EXPECT_NE(textOf(user() / "vorli-for-all.desktop").find("Hidden=true\n"), std::string::npos);  // one start
}

TEST_F(LoginItemTest, anOverrideOfTheSystemsEntryIsHiddenInsteadOfRemoved) {
  place("etc/autostart/com.kv.vorli.desktop", entry());
  place("home/.config/autostart/com.kv.vorli.desktop", entry("X-Mine=1\n"));
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_EQ(item().status(), 0);
  EXPECT_NE(textOf(own()).find("X-Mine=1\n"), std::string::npos);
}

TEST_F(LoginItemTest, anEntryThatTheUserWroteCountsAndIsOnlyHidden) {
  place("home/.config/autostart/my-vorli.desktop", entry("X-Mine=1\n"));
  EXPECT_EQ(item().status(), 1);
  EXPECT_TRUE(item().registerItem().has_value());
  EXPECT_FALSE(fs::exists(own()));
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_EQ(item().status(), 0);
  EXPECT_NE(textOf(user() / "my-vorli.desktop").find("X-Mine=1\n"), std::string::npos);
}

TEST_F(LoginItemTest, entriesOfOtherProgramsAndDesktopsDoNotCount) {
  place("etc/autostart/other.desktop", "[Desktop Entry]\nType=Application\nName=O\nExec=/bin/true\n");
  place("etc/autostart/kde.desktop", entry("OnlyShowIn=KDE;\n"));
  place("etc/autostart/vorli.desktop.bak", entry());
  EXPECT_EQ(item().status(), 0);
  EXPECT_EQ(item("KDE").status(), 1);
}

TEST_F(LoginItemTest, anEntryThatTriesAnotherProgramCountsOnlyWhereThatIsInstalled) {
  place("etc/autostart/vorli-for-all.desktop", entry("TryExec=" + (root / "bin/other").string() + "\n"));
  EXPECT_EQ(item().status(), 0);
  place("bin/other", "a program");
  EXPECT_EQ(item().status(), 0);  // it cannot be run
  fs::permissions(root / "bin/other", fs::perms::owner_all);
  EXPECT_EQ(item().status(), 1);
}

TEST_F(LoginItemTest, aLinkToTheProgramIsTheProgram) {
  fs::create_symlink(program(), root / "bin/alias");
  place("etc/autostart/alias.desktop",
        "[Desktop Entry]\nType=Application\nName=V\nExec=" + (root / "bin/alias").string() + " --quiet\n");
  EXPECT_EQ(item().status(), 1);
}

TEST_F(LoginItemTest, anEntryThatStartsTheProgramThroughAnotherCounts) {
  for (const auto& command :
       {"nice -n 5 env QT_SCALE_FACTOR=2 " + program(), "sh -c \"sleep 5 && " + program() + "\""}) {
    place("home/.config/autostart/my-vorli.desktop",
          "[Desktop Entry]\nType=Application\nName=V\nExec=" + command + "\n");
    EXPECT_EQ(item().status(), 1) << command;
    EXPECT_TRUE(item().registerItem().has_value());
    EXPECT_FALSE(fs::exists(own()));
  }
}

TEST_F(LoginItemTest, aFailedWriteIsReported) {
  place("home/.config", "a file where the folder should be");
  const auto result = item().registerItem();
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(),
            "cannot write " + (user() / ".com.kv.vorli.desktop.new").string() + ": Not a directory");
  EXPECT_EQ(textOf(root / "home/.config"), "a file where the folder should be");
}

TEST_F(LoginItemTest, aLongEntryIsSwitchedOffWithoutLosingItsEnd) {
  const std::string comment = "#" + std::string(100'000, '-') + "\n";
  place("home/.config/autostart/my-vorli.desktop", entry(comment + "X-Mine=1\n"));
  EXPECT_TRUE(item().unregisterItem().has_value());
  EXPECT_EQ(item().status(), 0);
  EXPECT_TRUE(textOf(user() / "my-vorli.desktop").ends_with("X-Mine=1\n"));
}

}  // namespace
}  // namespace vorli::linuxhost

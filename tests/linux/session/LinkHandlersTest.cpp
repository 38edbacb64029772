#include "linux/session/LinkHandlers.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

using testing::ElementsAre;
using testing::Optional;

constexpr auto mail = "x-scheme-handler/mailto";

struct LinkHandlersTest : testing::Test {
  LinkHandlersTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-links-XXXXXX").string();
    root = mkdtemp(pattern.data());
  }
  ~LinkHandlersTest() override { std::filesystem::remove_all(root); }

  void write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories(std::filesystem::path(root + "/" + name).parent_path());
    std::ofstream(root + "/" + name) << text;
  }
  /// Installs an entry whose program exists.
  void install(const std::string& id, const std::string& arguments, const std::string& more = "") const {
    write("system/applications/" + id, "[Desktop Entry]\nExec=sh " + arguments + "\n" + more);
  }
  std::optional<std::vector<std::string>> wholeCommand() const {
    return LinkHandlers({.configFolders = {root + "/config", root + "/etc"},
                         .dataFolders = {root + "/data", root + "/system"},
                         .desktops = {"xfce"}})
        .commandFor(mail, "mailto:a");
  }
  /// The command without its last argument, the link.
  std::optional<std::vector<std::string>> command() const {
    auto words = wholeCommand();
    if (!words) return std::nullopt;
    EXPECT_EQ(words->back(), "mailto:a");
    words->pop_back();
    return words;
  }

  std::string root;
};

TEST_F(LinkHandlersTest, nothingInstalledHandlesNothing) {
  EXPECT_EQ(command(), std::nullopt);
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=gone.desktop\n");
  EXPECT_EQ(command(), std::nullopt);
}

TEST_F(LinkHandlersTest, usersChoiceComesBeforeTheSystems) {
  install("a.desktop", "a %u");
  install("b.desktop", "b %U");
  write("etc/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a")));
  write("config/mimeapps.list",
        "[Default Applications]\n x-scheme-handler/mailto = gone.desktop;b.desktop;\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "b")));
}

TEST_F(LinkHandlersTest, listOfTheRunningDesktopComesFirst) {
  install("a.desktop", "a");
  install("b.desktop", "b");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  write("config/xfce-mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=b.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "b")));
}

TEST_F(LinkHandlersTest, capableProgramIsTakenWhereNoneWasChosen) {
  install("a.desktop", "a");
  write("system/applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/mailto=a.desktop;\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a")));
}

TEST_F(LinkHandlersTest, programThatTheUserTookAwayFromTheTypeIsNotTaken) {
  install("a.desktop", "a");
  install("b.desktop", "b");
  write("system/applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/mailto=a.desktop;b.desktop;\n");
  write("config/mimeapps.list", "[Removed Associations]\nx-scheme-handler/mailto=a.desktop;\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "b")));
}

TEST_F(LinkHandlersTest, programThatTheUserAddedIsTakenAgainstTheSystemsList) {
  install("a.desktop", "a");
  install("b.desktop", "b");
  write("etc/mimeapps.list",
        "[Added Associations]\nx-scheme-handler/mailto=b.desktop\n"
        "[Removed Associations]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "b")));
  write("config/mimeapps.list", "[Added Associations]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a")));
}

TEST_F(LinkHandlersTest, hiddenTerminalAndMissingProgramsArePassedOver) {
  install("hidden.desktop", "a", "Hidden=true\n");
  install("terminal.desktop", "a", "Terminal=true\n");
  write("system/applications/missing.desktop", "[Desktop Entry]\nExec=no-such-program-of-anybody %u\n");
  write("system/applications/broken.desktop", "[Desktop Entry]\nExec=sh \"a\n");
  write("config/mimeapps.list",
        "[Default Applications]\nx-scheme-handler/mailto="
        "hidden.desktop;terminal.desktop;missing.desktop;broken.desktop;../a.desktop\n");
  EXPECT_EQ(command(), std::nullopt);
}

TEST_F(LinkHandlersTest, usersOwnEntryHidesTheSystemsOfTheSameName) {
  install("a.desktop", "a");
  write("data/applications/a.desktop", "[Desktop Entry]\nExec=sh own\n");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "own")));
}

TEST_F(LinkHandlersTest, programIsStartedWithTheLinkAsItsLastWord) {
  const LinkHandlers handlers(
      {.configFolders = {root + "/config"}, .dataFolders = {root + "/system"}, .desktops = {}});
  EXPECT_FALSE(handlers.open(mail, "mailto:a"));
  const std::string program = root + "/mail", pipe = root + "/pipe";
  write("mail", "#!/bin/sh\nprintf '%s,%s' \"$1\" \"$2\" > " + pipe + "\n");
  ASSERT_EQ(chmod(program.c_str(), 0700), 0);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  write("system/applications/a.desktop", "[Desktop Entry]\nExec=" + program + " --compose %u\n");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_TRUE(handlers.open(mail, "mailto:a?body=two%20words"));
  std::string words;
  std::getline(std::ifstream(pipe), words);  // waits for the program
  EXPECT_EQ(words, "--compose,mailto:a?body=two%20words");
}

TEST_F(LinkHandlersTest, wordsOfTheCommandKeepTheirPlaces) {
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  install("a.desktop", "-title %c %u", "Name=Tea Mail\n");
  EXPECT_THAT(wholeCommand(), Optional(ElementsAre("sh", "-title", "Tea Mail", "mailto:a")));
  install("a.desktop", "@@u %U @@ %i");
  EXPECT_THAT(wholeCommand(), Optional(ElementsAre("sh", "@@u", "mailto:a", "@@")));
  install("a.desktop", "--compose");
  EXPECT_THAT(wholeCommand(), Optional(ElementsAre("sh", "--compose", "mailto:a")));
}

TEST_F(LinkHandlersTest, anEscapedSemicolonDoesNotEndAnIdentifier) {
  install("a;b.desktop", "a");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=b.desktop;a\\;b.desktop;\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a")));
}

TEST_F(LinkHandlersTest, aDashMaySeparateAFolder) {
  install("maker/mail-box.desktop", "a");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=maker-mail-box.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a")));
  install("maker-mail-box.desktop", "b");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "b")));
}

TEST_F(LinkHandlersTest, escapesOfTheEntryAreUndoneBeforeThoseOfTheCommand) {
  write("system/applications/a.desktop", "[Desktop Entry]\nExec=sh\\s\"a \\\\$b\"\n");
  write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=a.desktop\n");
  EXPECT_THAT(command(), Optional(ElementsAre("sh", "a $b")));
}

}  // namespace
}  // namespace vorli::linuxhost

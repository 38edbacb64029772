#include "formats/AutostartEntry.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::formats {
namespace {

using Names = std::vector<std::string>;

bool starts(const std::string& lines, const Names& desktops = {}) {
  return parseAutostartEntry("[Desktop Entry]\nExec=vorli\n" + lines).startsIn(desktops);
}

TEST(AutostartEntryTest, startsUnlessItIsSwitchedOff) {
  EXPECT_TRUE(starts(""));
  EXPECT_TRUE(starts("Hidden=false\nX-GNOME-Autostart-enabled=true\n"));
  EXPECT_FALSE(starts("Hidden=true\n"));
  EXPECT_FALSE(starts(" Hidden = true \r\n"));
  EXPECT_TRUE(starts("#Hidden=true\n[Other]\nHidden=true\n"));
}

TEST(AutostartEntryTest, theLastLineOfAKeyCounts) {
  EXPECT_TRUE(starts("Hidden=true\nHidden=false\n"));
  EXPECT_FALSE(starts("Hidden=false\nHidden=true\n"));
  EXPECT_TRUE(starts("X-GNOME-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n"));
}

TEST(AutostartEntryTest, aSwitchCountsOnlyInTheSessionsThatReadIt) {
  for (const auto* off : {"X-GNOME-Autostart-enabled=false\n", "X-GNOME-Autostart-enabled=0\n"}) {
    EXPECT_FALSE(starts(off, {"MATE"}));
    EXPECT_FALSE(starts(off, {"X-Cinnamon"}));
    EXPECT_TRUE(starts(off, {"GNOME"}));  // systemd starts the entries there
    EXPECT_TRUE(starts(off, {"KDE"}));
    EXPECT_TRUE(starts(off, {"XFCE"}));
    EXPECT_TRUE(starts(off));
  }
  EXPECT_FALSE(starts("X-MATE-Autostart-enabled=false\n", {"MATE"}));
  EXPECT_TRUE(starts("X-MATE-Autostart-enabled=false\n", {"X-Cinnamon"}));
}

TEST(AutostartEntryTest, aNumberHidesWhereNumbersAreUnderstood) {
  EXPECT_FALSE(starts("Hidden=1\n", {"ubuntu", "GNOME"}));
  EXPECT_FALSE(starts("Hidden=1\n", {"MATE"}));
  EXPECT_TRUE(starts("Hidden=1\n", {"XFCE"}));
  EXPECT_TRUE(starts("Hidden=0\n", {"GNOME"}));
}

TEST(AutostartEntryTest, switchingOnRemovesEverySwitch) {
  EXPECT_EQ(switchedOn("[Desktop Entry]\nHidden=1\nX-GNOME-Autostart-enabled=false\n"
                       "X-MATE-Autostart-enabled=false\nName=Tea\n"),
            "[Desktop Entry]\nName=Tea\n");
}

TEST(AutostartEntryTest, aSpaceMayBeEscaped) {
  const auto entry =
      parseAutostartEntry("[Desktop Entry]\nName=Tea\\sTime\nExec=\"/opt/Tea\\sTime/tea\" -q\n");
  EXPECT_EQ(entry.name, "Tea Time");
  EXPECT_EQ(entry.program, "/opt/Tea Time/tea");
  EXPECT_EQ(entry.arguments, (Names{"-q"}));
}

TEST(AutostartEntryTest, onlyTheNameIsRepairedSinceAPathIsBytes) {
  const auto entry =
      parseAutostartEntry("[Desktop Entry]\nName=T\xFF\nExec=/opt/t\xFF\nTryExec=/opt/t\xFF\n");
  EXPECT_EQ(entry.name, "T\uFFFD");
  EXPECT_EQ(entry.program, "/opt/t\xFF");
  EXPECT_EQ(entry.tryExec, "/opt/t\xFF");
}

TEST(AutostartEntryTest, allGroupsOfTheNameCount) {
  EXPECT_FALSE(starts("[Other]\nX=1\n[Desktop Entry]\nHidden=true\n"));
}

TEST(AutostartEntryTest, aListMayHaveAnEscapedSemicolon) {
  EXPECT_TRUE(starts("OnlyShowIn=A\\;B;\n", {"A;B"}));
  EXPECT_FALSE(starts("OnlyShowIn=A\\;B;\n", {"B"}));
}

TEST(AutostartEntryTest, aByteOrderMarkIsSkipped) {
  EXPECT_TRUE(parseAutostartEntry("\xEF\xBB\xBF[Desktop Entry]\nExec=vorli\n").startsIn({}));
}

TEST(AutostartEntryTest, aByteOrderMarkStaysInFrontWhenAnEntryIsSwitched) {
  const std::string on = "\xEF\xBB\xBF[Desktop Entry]\nExec=vorli\n";
  const std::string off = "\xEF\xBB\xBF[Desktop Entry]\nHidden=true\nExec=vorli\n";
  EXPECT_EQ(switchedOff(on), off);
  EXPECT_EQ(switchedOn(off), on);
  EXPECT_EQ(switchedOff("\xEF\xBB\xBF"), "\xEF\xBB\xBF[Desktop Entry]\nHidden=true\n");
}

TEST(AutostartEntryTest, startsOnlyInItsDesktops) {
  EXPECT_FALSE(starts("OnlyShowIn=KDE;LXQt;\n", {"XFCE"}));
  EXPECT_TRUE(starts("OnlyShowIn=KDE;XFCE;\n", {"XFCE"}));
  EXPECT_FALSE(starts("OnlyShowIn=KDE\n", {}));
  EXPECT_FALSE(starts("NotShowIn=GNOME;\n", {"ubuntu", "GNOME"}));
  EXPECT_TRUE(starts("NotShowIn=GNOME;\n", {"KDE"}));
}

TEST(AutostartEntryTest, aTextThatIsNotAnEntryStartsNothing) {
  for (const char* text :
       {"", "Exec=vorli", "[Other]\nExec=vorli\n", "[Desktop Entry]\nName=Vorli\n", "\xFF=\x00"})
    EXPECT_FALSE(parseAutostartEntry(text).startsIn({})) << text;
}

TEST(AutostartEntryTest, readsTheProgramThatItWrote) {
  for (const std::string program :
       {"/usr/bin/vorli", "/home/anna b/vorli", "/opt/100%/vorli", "/a\"b/$HOME/`x`/vorli", "/a\\b/vorli"}) {
    const auto entry = parseAutostartEntry(autostartEntryText(program));
    EXPECT_EQ(entry.program, program);
    EXPECT_TRUE(entry.startsIn({"GNOME"}));
  }
}

TEST(AutostartEntryTest, aWrapperIsNotTheProgram) {
  for (const std::string wrapper :
       {"env ", "env -i LANG=C ", "/usr/bin/env A=1 B=/b ", "nice -n 5 ", "nice -10 ", "nohup ",
        "setsid -f env C= ", "env -u DISPLAY -C /tmp A=1 "}) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nExec=" + wrapper + "/usr/bin/vorli --quiet 5\n");
    EXPECT_EQ(entry.program, "/usr/bin/vorli") << wrapper;
    EXPECT_EQ(entry.arguments, (Names{"--quiet", "5"})) << wrapper;
  }
  for (const std::string command : {"env A=1", "env -u", "env -u vorli"})
    EXPECT_EQ(parseAutostartEntry("[Desktop Entry]\nExec=" + command + "\n").program, "") << command;
}

TEST(AutostartEntryTest, anEmptyWordIsNoProgramAndItsArgumentsAreIgnored) {
  for (const std::string command : {"\"\" --quiet", "env \"\" --quiet", "sh -c \"\" \"\""}) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nExec=" + command + "\n");
    EXPECT_TRUE(!entry.program.empty() || entry.arguments.empty()) << command;
  }
  const auto entry = parseAutostartEntry("[Desktop Entry]\nExec=\"\" --quiet\nExec=/usr/bin/vorli\n");
  EXPECT_EQ(entry.program, "/usr/bin/vorli");
  EXPECT_EQ(entry.arguments, Names());
}

TEST(AutostartEntryTest, aShellThatOnlyWaitsIsNotTheProgram) {
  for (const std::string command :
       {"sh -c \"/usr/bin/vorli --quiet 5\"", "/bin/sh -c \"sleep 10 && exec /usr/bin/vorli --quiet 5\"",
        "bash -lc \"sleep 2; env A=1 /usr/bin/vorli --quiet 5 &\"",
        "env A=1 dash -c \"sleep 1;sleep 2&&/usr/bin/vorli --quiet 5&\" ignored"}) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nExec=" + command + "\n");
    EXPECT_EQ(entry.program, "/usr/bin/vorli") << command;
    EXPECT_EQ(entry.arguments, (Names{"--quiet", "5"})) << command;
  }
}

TEST(AutostartEntryTest, aShellThatDoesMoreIsTheProgram) {
  for (const std::string command :
       {"sh", "sh -c", "sh -c \"\"", "sh /usr/bin/vorli", "sh -c \"pkill vorli; vorli\"",
        "sh -c \"vorli || tea\"", "sh -c \"cd /tmp && vorli\"", "sh -c \"A=1 vorli\"",
        "sh -c \"sleep 1 & vorli\"", "sh -c \"vorli &&\"", "sh -c \"vorli;\"", "sh --norc vorli"})
    EXPECT_EQ(parseAutostartEntry("[Desktop Entry]\nExec=" + command + "\n").program, "sh") << command;
}

TEST(AutostartEntryTest, describesTheProgramInTheUsersLanguage) {
  const std::string text =
      "[Desktop Entry]\nName[de_AT]=Jausenzeit\nName=Tea Time\nName[de]=Teezeit\nName[fr]=Le Th\\s\n"
      "TryExec=/opt/tea\nExec=/usr/bin/env A=/b/c tea --quiet %U\n[Other]\nName[de_AT]=x\n";
  EXPECT_EQ(parseAutostartEntry(text).name, "Tea Time");
  EXPECT_EQ(parseAutostartEntry(text, {"de_DE", "de"}).name, "Teezeit");
  EXPECT_EQ(parseAutostartEntry(text, {"de_AT", "de"}).name, "Jausenzeit");
  const auto entry = parseAutostartEntry(text);
  EXPECT_EQ(entry.tryExec, "/opt/tea");
  EXPECT_EQ(entry.program, "tea");
  EXPECT_EQ(entry.arguments, (Names{"--quiet"}));
  EXPECT_FALSE(entry.isPartOfDesktop);
}

TEST(AutostartEntryTest, knowsPartsOfTheDesktop) {
  for (const char* line : {"X-GNOME-Autostart-Phase=Initialization", "AutostartCondition=GSettings a b",
                           "X-KDE-autostart-phase=1", "X-KDE-autostart-condition=a:b:c:true"})
    EXPECT_TRUE(parseAutostartEntry("[Desktop Entry]\nExec=x\n" + std::string(line)).isPartOfDesktop) << line;
}

TEST(AutostartEntryTest, switchesOnAndKeepsTheRest) {
  EXPECT_EQ(switchedOn("# Hidden=true\n[Desktop Entry]\r\nHidden=true\nName=X\n Hidden = false\n"
                       "X-GNOME-Autostart-enabled=false\n[Other]\nHidden=true\nend"),
            "# Hidden=true\n[Desktop Entry]\r\nName=X\n[Other]\nHidden=true\nend");
  EXPECT_EQ(switchedOn(""), "");
}

TEST(AutostartEntryTest, quotesByBothRules) {
  EXPECT_EQ(quotedForExec("/usr/bin/vorli"), "\"/usr/bin/vorli\"");
  EXPECT_EQ(quotedForExec("a$b"), "\"a\\\\$b\"");
  EXPECT_EQ(quotedForExec("a\\b"), "\"a\\\\\\\\b\"");
  EXPECT_EQ(quotedForExec("50%"), "\"50%%\"");
}

TEST(AutostartEntryTest, switchesOffAndKeepsTheRest) {
  EXPECT_EQ(switchedOff("# mine\n[Desktop Entry]\nName=X\nHidden=false\nExec=vorli\n"),
            "# mine\n[Desktop Entry]\nHidden=true\nName=X\nExec=vorli\n");
  EXPECT_EQ(switchedOff(""), "[Desktop Entry]\nHidden=true\n");
  EXPECT_EQ(switchedOff("no entry"), "[Desktop Entry]\nHidden=true\nno entry\n");
  EXPECT_FALSE(parseAutostartEntry(switchedOff(autostartEntryText("/usr/bin/vorli"))).startsIn({}));
}

}  // namespace
}  // namespace vorli::formats

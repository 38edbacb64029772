#include "formats/DesktopEntry.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

const std::string minimal = "[Desktop Entry]\nType=Application\nName=Viewer\nExec=viewer %U\n";

DesktopEntry parsed(const std::string& text, const std::vector<std::string>& locales = {}) {
  auto entry = parseDesktopEntry(text, locales);
  EXPECT_TRUE(entry) << text;
  return entry.value_or(DesktopEntry{});
}

TEST(DesktopEntryTest, readsTheKeysThatProcessesAreMatchedBy) {
  const auto entry =
      parsed(minimal + "Icon=viewer-icon\nStartupWMClass=Viewer-bin\nX-Flatpak=org.example.Viewer\n");
  EXPECT_EQ(entry.name, "Viewer");
  EXPECT_EQ(entry.program, "viewer");
  EXPECT_EQ(entry.icon, "viewer-icon");
  EXPECT_EQ(entry.startupWMClass, "Viewer-bin");
  EXPECT_EQ(entry.flatpakID, "org.example.Viewer");
  EXPECT_TRUE(entry.isVisible());
}

TEST(DesktopEntryTest, takesTheNameInTheMostExactLanguageThatItHas) {
  const std::string text = minimal + "Name[de]=Betrachter\nName[de_AT]=Schauer\nName[fr]=Visionneuse\n";
  EXPECT_EQ(parsed(text, localeKeys("de_AT.UTF-8@euro")).name, "Schauer");
  EXPECT_EQ(parsed(text, localeKeys("de_CH.UTF-8")).name, "Betrachter");
  EXPECT_EQ(parsed(text, localeKeys("it_IT.UTF-8")).name, "Viewer");
  EXPECT_EQ(parsed(text, localeKeys("C.UTF-8")).name, "Viewer");
}

TEST(DesktopEntryTest, ordersLocaleKeysFromTheMostExact) {
  EXPECT_EQ(localeKeys("de_AT.UTF-8@euro"),
            (std::vector<std::string>{"de_AT@euro", "de_AT", "de@euro", "de"}));
  EXPECT_EQ(localeKeys("fr"), std::vector<std::string>{"fr"});
  EXPECT_TRUE(localeKeys("POSIX").empty());
  EXPECT_TRUE(localeKeys("").empty());
}

TEST(DesktopEntryTest, looksBehindWrappersForTheProgram) {
  EXPECT_EQ(parsed(minimal + "").program, "viewer");
  const auto entry = parsed(
      "[Desktop Entry]\nType=Application\nName=V\nExec=env -u X A=1 B=/c \"/opt/My App/run\" --flag %f\n");
  EXPECT_EQ(entry.program, "/opt/My App/run");
  EXPECT_EQ(entry.arguments, std::vector<std::string>{"--flag"});
}

TEST(DesktopEntryTest, fallsBackToTryExec) {
  EXPECT_EQ(parsed("[Desktop Entry]\nType=Application\nName=V\nExec=env A=1\nTryExec=/usr/bin/v\n").program,
            "/usr/bin/v");
}

TEST(DesktopEntryTest, anEmptyWordIsNoProgramAndItsArgumentsAreIgnored) {
  const auto entry =
      parsed("[Desktop Entry]\nType=Application\nName=V\nExec=\"\" --flag\nTryExec=/usr/bin/v\n");
  EXPECT_EQ(entry.program, "/usr/bin/v");
  EXPECT_TRUE(entry.arguments.empty());
}

TEST(DesktopEntryTest, splitsExecByItsQuotingRules) {
  EXPECT_EQ(splitExec(R"(a "b c" d\ e %U --x=%f %%)"),
            (std::vector<std::string>{"a", "b c", "d e", "--x=%f", "%"}));
  EXPECT_EQ(splitExec(R"("" x)"), (std::vector<std::string>{"", "x"}));
  EXPECT_EQ(splitExec(R"(a \b c\ )"), (std::vector<std::string>{"a", "b", "c "}));
  EXPECT_TRUE(splitExec("\"never closed").empty());
  EXPECT_TRUE(splitExec("").empty());
}

TEST(DesktopEntryTest, fieldCodesOfExecAreReplacedInTheirPlaces) {
  const auto words = splitExec(R"(a %c "%u" --x=%f %% b)", [](char code, std::vector<std::string>& added) {
    if (code == 'c') added.insert(added.end(), {"two", "words"});
    if (code == 'u') added.emplace_back("link");
  });
  EXPECT_EQ(words, (std::vector<std::string>{"a", "two", "words", "link", "--x=%f", "%", "b"}));
}

TEST(DesktopEntryTest, anythingNotShownByALauncherIsNotVisible) {
  EXPECT_FALSE(parsed(minimal + "NoDisplay=true\n").isVisible());
  EXPECT_FALSE(parsed(minimal + "Hidden=true\n").isVisible());
  EXPECT_FALSE(parsed(minimal + "Terminal=true\n").isVisible());
}

TEST(DesktopEntryTest, readsOnlyItsOwnGroup) {
  const auto entry = parsed("# head\n\n" + minimal + "[Desktop Action new]\nName=New window\nExec=other\n");
  EXPECT_EQ(entry.name, "Viewer");
  EXPECT_EQ(entry.program, "viewer");
}

TEST(DesktopEntryTest, theFirstOfTwoEqualKeysCounts) {
  EXPECT_EQ(parsed(minimal + "Name=Other\n").name, "Viewer");
}

TEST(DesktopEntryTest, toleratesWindowsLineEndsAndBlanks) {
  EXPECT_EQ(parsed("[Desktop Entry]\r\nType = Application\r\nName =  Viewer \r\nExec=viewer\r\n").name,
            "Viewer");
}

TEST(DesktopEntryTest, repairsInvalidText) {
  EXPECT_EQ(parsed("[Desktop Entry]\nType=Application\nName=V\xff\nExec=v\n").name, "V\xEF\xBF\xBD");
}

TEST(DesktopEntryTest, anEntryThatIsNotAnApplicationIsRefusedWithAReason) {
  for (const std::string text :
       {"", "\n", "garbage", "[Desktop Entry", "[Desktop Entry]",
        "[Other]\nType=Application\nName=V\nExec=v\n", "[Desktop Entry]\nType=Link\nName=V\nURL=x\n",
        "[Desktop Entry]\nType=Application\nExec=v\n", "[Desktop Entry]\nType=Application\nName=V\n",
        "[Desktop Entry]\nType=Application\nName=V\nExec=\n",
        "[Desktop Entry]\nType=Application\nName=V\nExec=\"open\n", "[Desktop Entry]\nName=V\nExec=v\n",
        "Type=Application\nName=V\nExec=v\n", "[Desktop Entry]\nType=application\nName=V\nExec=v\n"}) {
    const auto entry = parseDesktopEntry(text, {});
    ASSERT_FALSE(entry) << text;
    EXPECT_FALSE(entry.error().empty());
  }
}

TEST(DesktopEntryTest, anEntryIsForTheDesktopsThatItNames) {
  const auto entry = [](const std::string& more) {
    return parseDesktopEntry("[Desktop Entry]\nType=Application\nName=A\nExec=a\n" + more, {}).value();
  };
  const std::vector<std::string> xfce{"XFCE"}, ubuntu{"ubuntu", "GNOME"};
  EXPECT_TRUE(entry("").isFor(xfce));
  EXPECT_TRUE(entry("OnlyShowIn=GNOME;XFCE;\n").isFor(xfce));
  EXPECT_TRUE(entry("OnlyShowIn=GNOME\n").isFor(ubuntu));
  EXPECT_FALSE(entry("OnlyShowIn=GNOME;\n").isFor(xfce));
  EXPECT_FALSE(entry("OnlyShowIn=GNOME;\n").isFor({}));
  EXPECT_FALSE(entry("NotShowIn=KDE;GNOME;\n").isFor(ubuntu));
  EXPECT_TRUE(entry("NotShowIn=KDE;GNOME;\n").isFor(xfce));
  EXPECT_EQ(entry("OnlyShowIn=;;A\\;B;\n").onlyShowIn, std::vector<std::string>{"A;B"});
  EXPECT_EQ(entry("TryExec=tool\n").tryExec, "tool");
}

}  // namespace
}  // namespace vorli::formats

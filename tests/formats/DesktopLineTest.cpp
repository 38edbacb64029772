#include "formats/DesktopLine.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::formats {
namespace {

using Texts = std::vector<std::string>;

TEST(DesktopLineTest, aLineIsAGroupAKeyWithItsValueOrNothing) {
  EXPECT_EQ(splitDesktopLine("[Desktop Entry]"), (DesktopLine{"[Desktop Entry]", "", ""}));
  EXPECT_EQ(splitDesktopLine("Name[de]=Tee = Zeit"), (DesktopLine{"", "Name[de]", "Tee = Zeit"}));
  EXPECT_EQ(splitDesktopLine("Hidden="), (DesktopLine{"", "Hidden", ""}));
  for (const char* nothing : {"", "   ", "# Name=Tea", "  #Hidden=true", "Hidden"})
    EXPECT_EQ(splitDesktopLine(nothing), DesktopLine()) << nothing;
}

TEST(DesktopLineTest, blanksAroundThePartsAreIgnored) {
  EXPECT_EQ(splitDesktopLine(" \tHidden \t= true \r"), (DesktopLine{"", "Hidden", "true"}));
  EXPECT_EQ(splitDesktopLine("\t[Desktop Entry]\r"), (DesktopLine{"[Desktop Entry]", "", ""}));
  // No session accepts a typographic space as a blank.
  EXPECT_EQ(splitDesktopLine("Hidden=true\u00a0").value, "true\u00a0");
}

TEST(DesktopLineTest, aTextHasFiveEscapes) {
  EXPECT_EQ(desktopText(R"(\s|\n|\t|\r|\\)"), " |\n|\t|\r|\\");
  EXPECT_EQ(desktopText(R"(\\s)"), R"(\s)");
  EXPECT_EQ(desktopText(R"(\"\q\)"), R"(\"\q\)");
  EXPECT_EQ(desktopText(""), "");
}

TEST(DesktopLineTest, aListEndsItsTextsAtPlainSemicolons) {
  EXPECT_EQ(desktopList("XFCE;KDE;"), (Texts{"XFCE", "KDE"}));
  EXPECT_EQ(desktopList("XFCE"), Texts{"XFCE"});
  EXPECT_EQ(desktopList(";;XFCE;;"), Texts{"XFCE"});
  EXPECT_EQ(desktopList(R"(a\;b;c)"), (Texts{"a;b", "c"}));
  EXPECT_EQ(desktopList(R"(a\\;b)"), (Texts{R"(a\)", "b"}));
  EXPECT_EQ(desktopList(R"(\s;x\)"), (Texts{" ", R"(x\)"}));
  EXPECT_EQ(desktopList("GNOME; XFCE"), (Texts{"GNOME", " XFCE"}));
  EXPECT_EQ(desktopList(""), Texts());
}

}  // namespace
}  // namespace vorli::formats

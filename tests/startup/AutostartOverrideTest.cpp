#include "formats/AutostartEntry.h"
#include "formats/PauseMarks.h"
#include "startup/AutostartOverride.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

using Override = AutostartOverride;

TEST(AutostartOverrideTest, anOverrideIsAHiddenEntryNamedAfterItsFile) {
  EXPECT_EQ(overrideText("acme.desktop", Override::paused),
            "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nX-Vorli-Override=paused\n"
            "Type=Application\nName=acme\n");
  EXPECT_EQ(overrideText("acme.desktop", Override::removed),
            "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nX-Vorli-Override=removed\n"
            "Type=Application\nName=acme\n");
}

TEST(AutostartOverrideTest, noSessionStartsAnOverride) {
  for (const auto kind : {Override::paused, Override::removed}) {
    const auto entry = formats::parseAutostartEntry(overrideText("acme.desktop", kind));
    EXPECT_TRUE(entry.isOff);
    EXPECT_EQ(entry.name, "acme");
    EXPECT_FALSE(entry.startsIn({"XFCE"}));
    EXPECT_TRUE(formats::hasPauseMarks(overrideText("acme.desktop", kind)));
  }
}

TEST(AutostartOverrideTest, onlyTheWholeTextForThisNameIsAnOverride) {
  const auto text = overrideText("acme.desktop", Override::paused);
  EXPECT_EQ(overrideKind("acme.desktop", text), Override::paused);
  EXPECT_EQ(overrideKind("acme.desktop", overrideText("acme.desktop", Override::removed)), Override::removed);
  EXPECT_EQ(overrideKind("tea.desktop", text), std::nullopt);
  EXPECT_EQ(overrideKind("acme.desktop", text + "X-Mine=1\n"), std::nullopt);
  EXPECT_EQ(overrideKind("acme.desktop", text.substr(1)), std::nullopt);
  EXPECT_EQ(overrideKind("acme.desktop", text.substr(0, text.size() - 1)), std::nullopt);
  EXPECT_EQ(overrideKind("acme.desktop", ""), std::nullopt);
}

TEST(AutostartOverrideTest, aNameWithDotsLosesOnlyItsLastEnding) {
  EXPECT_TRUE(overrideText("org.acme.App.desktop", Override::paused).ends_with("\nName=org.acme.App\n"));
}

}  // namespace
}  // namespace vorli

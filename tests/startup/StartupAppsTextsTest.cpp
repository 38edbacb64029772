#include "startup/StartupAppsTexts.h"
#include "tests/wording/ForeignWords.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(StartupAppsTextsTest, macOSWords) {
  const auto& texts = StartupAppsTexts::macOS;
  EXPECT_EQ(texts.looking, "Looking for apps running on your Mac…");
  EXPECT_EQ(texts.nothing, "Nothing unusual is running in the background. Your Mac is in good shape.");
  EXPECT_EQ(texts.hiddenItems,
            " apps that macOS runs for itself. They're safe and you shouldn't turn them off.");
  EXPECT_EQ(texts.managedToolTip, "Managed by macOS. Click to open System Settings.");
  EXPECT_EQ(texts.managedHint, "Opens System Settings, where you can turn this off.");
  EXPECT_EQ(texts.notApproved, "Approve Vorli under Allow in the Background to remove ");
  EXPECT_EQ(texts.notApprovedSpoken, ". System Settings is now open.");
  EXPECT_EQ(texts.approve, "Open Settings");
  EXPECT_EQ(texts.approveLabel, "Open Login Items in System Settings");
}

TEST(StartupAppsTextsTest, linuxWordsNameNoMac) {
  const auto& texts = StartupAppsTexts::linuxDesktop;
  for (const auto text : {texts.looking, texts.nothing, texts.hiddenItems, texts.managedToolTip,
                          texts.managedHint, texts.notApproved, texts.notApprovedSpoken, texts.declinedSpoken,
                          texts.approve, texts.approveLabel}) {
    expectNoForeignWords(text);
  }
}

}  // namespace
}  // namespace vorli

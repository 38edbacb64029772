#include "helper/HelperTexts.h"
#include "tests/wording/ForeignWords.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(HelperTextsTest, macOSWords) {
  EXPECT_EQ(HelperTexts::macOS.requiresApproval, "Awaiting approval in System Settings");
  EXPECT_EQ(HelperTexts::macOS.needsInstallation,
            "Vorli needs to live in your Applications folder. Drag Vorli there from the DMG, then reopen.");
}

TEST(HelperTextsTest, linuxWords) {
  const auto& texts = HelperTexts::linuxDesktop;
  EXPECT_EQ(texts.requiresApproval, "Awaiting your approval");
  EXPECT_EQ(texts.needsInstallation,
            "Vorli needs to be installed before it can set up its helper. Install its package or run its "
            "installer, then reopen.");
  for (const auto text : {texts.requiresApproval, texts.needsInstallation}) expectNoForeignWords(text);
}

}  // namespace
}  // namespace vorli

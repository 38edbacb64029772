#include "polish/PolishTexts.h"
#include "tests/wording/ForeignWords.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(PolishTextsTest, macOSWords) {
  const auto& texts = PolishTexts::macOS;
  EXPECT_EQ(texts.approveHelper, "A gentle tidy. Approve Vorli in Login Items for a full polish.");
  EXPECT_EQ(texts.helperOutOfReach, "A gentle tidy. Couldn't reach the helper for a full polish.");
  EXPECT_EQ(texts.soundSpared, "A gentle tidy. Held off the deep polish so your audio stays smooth.");
  EXPECT_EQ(texts.polished, "Now, your Mac has room to breathe.");
}

TEST(PolishTextsTest, linuxWords) {
  const auto& texts = PolishTexts::linuxDesktop;
  EXPECT_EQ(texts.approveHelper, "A gentle tidy. Approve Vorli's helper for a full polish.");
  EXPECT_EQ(texts.helperOutOfReach, "A gentle tidy. Couldn't reach the helper for a full polish.");
  EXPECT_EQ(texts.soundSpared, "A gentle tidy. Held off the deep polish so your audio stays smooth.");
  EXPECT_EQ(texts.polished, "Now, your computer has room to breathe.");
  for (const auto text : {texts.approveHelper, texts.helperOutOfReach, texts.soundSpared, texts.polished})
    expectNoForeignWords(text);
}

TEST(PolishTextsTest, theWordsThatShowTheLinkOccurInTheirSentences) {
  for (const auto* texts : {&PolishTexts::macOS, &PolishTexts::linuxDesktop}) {
    EXPECT_NE(texts->approveHelper.find(texts->approveHelperWords), std::string_view::npos);
    EXPECT_NE(texts->helperOutOfReach.find(texts->helperOutOfReachWords), std::string_view::npos);
    for (const auto sentence : {texts->soundSpared, texts->polished}) {
      EXPECT_EQ(sentence.find(texts->approveHelperWords), std::string_view::npos);
      EXPECT_EQ(sentence.find(texts->helperOutOfReachWords), std::string_view::npos);
    }
  }
}

}  // namespace
}  // namespace vorli

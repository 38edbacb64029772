#include "popover/PopoverTexts.h"
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"
#include "tests/wording/ForeignWords.h"

#include <gtest/gtest.h>
#include <utility>

namespace vorli {
namespace {

TEST(PopoverTextsTest, macOSWords) {
  const auto& texts = PopoverTexts::macOS;
  EXPECT_EQ(texts.healthy, "Your Mac feels great.");
  EXPECT_EQ(texts.warming, "Your Mac is starting to fill up.");
  EXPECT_EQ(texts.critical, "Your Mac is full. Time to polish it.");
  EXPECT_EQ(texts.polishing, "Polishing your Mac…");
  EXPECT_EQ(texts.polishToolTip, "Tap to polish your Mac");
  EXPECT_EQ(texts.nothingToPolishToolTip, "Your Mac is feeling great. No polish needed right now.");
  EXPECT_EQ(texts.helperAwayToolTip,
            "Background helper isn't ready. Open Settings, then General, then Login Items to approve Vorli.");
  EXPECT_EQ(texts.nothingToPolishHint, "Your Mac doesn't need polishing right now.");
  EXPECT_EQ(texts.openSettingsHint,
            "Opens System Settings to Login Items so you can approve Vorli's background helper.");
}

TEST(PopoverTextsTest, linuxWords) {
  const auto& texts = PopoverTexts::linuxDesktop;
  EXPECT_EQ(texts.healthy, "Your computer feels great.");
  EXPECT_EQ(texts.warming, "Your computer is starting to fill up.");
  EXPECT_EQ(texts.critical, "Your computer is full. Time to polish it.");
  EXPECT_EQ(texts.polishing, "Polishing your computer…");
  EXPECT_EQ(texts.polishToolTip, "Tap to polish your computer");
  EXPECT_EQ(texts.nothingToPolishToolTip, "Your computer is feeling great. No polish needed right now.");
  EXPECT_EQ(texts.helperAwayToolTip,
            "Background helper isn't ready. Open Vorli's settings, then About, to set it up.");
  EXPECT_EQ(texts.nothingToPolishHint, "Your computer doesn't need polishing right now.");
  EXPECT_EQ(texts.openSettingsHint, "Asks for your password so that Vorli's background helper may work.");
  for (const auto text : {texts.healthy, texts.warming, texts.critical, texts.polishing, texts.polishToolTip,
                          texts.nothingToPolishToolTip, texts.helperAwayToolTip, texts.nothingToPolishHint,
                          texts.openSettingsHint})
    expectNoForeignWords(text);
}

// The popover of a Linux desktop.
struct LinuxPopoverTest : PolishFixture {
  LinuxPopoverTest() {
    popoverTexts = &PopoverTexts::linuxDesktop;
    polishTexts = &PolishTexts::linuxDesktop;
    view.emplace(popoverServices());
    scheduler.runReady();
    fakes::publish(view->animatedState, RingState::critical);
  }
};

TEST_F(LinuxPopoverTest, noSentenceOfItsStatesNamesAMac) {
  const std::pair<RingState, const char*> rows[] = {
      {RingState::healthy, "Your computer feels great."},
      {RingState::warming, "Your computer is starting to fill up."},
      {RingState::critical, "Your computer is full. Time to polish it."}};
  for (const auto& [state, sentence] : rows) {
    fakes::publish(view->animatedState, state);
    EXPECT_EQ(view->statusSentence(), sentence);
    for (const int status : {0, 1}) {
      setHelperStatus(status);
      expectNoForeignWords(view->polishToolTip());
      expectNoForeignWords(view->polishAccessibilityHint());
    }
  }
  expectNoForeignWords(view->openSettingsHint());
}

TEST_F(LinuxPopoverTest, aPolishWithoutTheHelperNamesTheHelperAndShowsTheLink) {
  setHelperStatus(0);
  EXPECT_FALSE(view->showsOpenSettingsLink());
  press();
  EXPECT_EQ(view->statusSentence(), "A gentle tidy. Approve Vorli's helper for a full polish.");
  EXPECT_TRUE(view->showsOpenSettingsLink());
}

TEST_F(LinuxPopoverTest, aWholePolishSaysComputer) {
  press();
  EXPECT_EQ(view->statusSentence(), "Polishing your computer…");
  goTo(2.66);
  EXPECT_EQ(view->statusSentence(), "Now, your computer has room to breathe.");
  EXPECT_FALSE(view->showsOpenSettingsLink());
}

}  // namespace
}  // namespace vorli

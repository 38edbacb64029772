#include "flows/OnboardingTexts.h"

#include <gtest/gtest.h>
#include <string_view>
#include <vector>

namespace vorli {
namespace {

const OnboardingTexts& macOS = OnboardingTexts::macOS;
const OnboardingTexts& linuxDesktop = OnboardingTexts::linuxDesktop;

std::vector<std::string_view> allOf(const OnboardingTexts& texts) {
  std::vector<std::string_view> all{texts.noPromptTitle, texts.noPromptSentence, texts.showApplications,
                                    texts.askAgain,      texts.askAgainHint,     texts.waitingHint,
                                    texts.doneSentence};
  for (const auto* state : {&texts.notInstalled, &texts.notRegistered, &texts.requiresApproval,
                            &texts.enabled, &texts.notFound}) {
    all.insert(all.end(), {state->title, state->sentence, state->statusLine});
    for (const auto& row : state->rows) all.insert(all.end(), {row.title, row.body});
  }
  return all;
}

TEST(OnboardingTextsTest, macOSTitlesAndSentences) {
  EXPECT_EQ(macOS.notInstalled.title, "Almost there");
  EXPECT_EQ(macOS.notInstalled.sentence,
            "Vorli needs to live in your Applications folder before it can install the helper.");
  EXPECT_EQ(macOS.notRegistered.title, "Welcome to Vorli");
  EXPECT_EQ(
      macOS.notRegistered.sentence,
      "Vorli polishes your Mac when things slow down, frees memory and flushes caches in seconds to make "
      "your Mac feel new again.");
  EXPECT_EQ(macOS.requiresApproval.title, "Waiting for approval");
  EXPECT_EQ(macOS.requiresApproval.sentence, "System Settings just opened. Toggle Vorli on, then come back.");
  EXPECT_EQ(macOS.enabled.title, "All set up");
  EXPECT_EQ(macOS.enabled.sentence, "Helper is approved.");
  EXPECT_EQ(macOS.notFound.title, "Almost there");
  EXPECT_EQ(macOS.notFound.sentence, "macOS couldn't find the helper inside the app bundle.");
  EXPECT_EQ(macOS.doneSentence, "When your Mac feels tight, click the Vorli icon up top and press Polish.");
}

TEST(OnboardingTextsTest, macOSRows) {
  using Look = ExplainerRow::Look;
  const auto row = [](const OnboardingStateTexts& state, std::size_t index) { return state.rows[index]; };
  ASSERT_EQ(macOS.requiresApproval.rows.size(), 2u);
  EXPECT_EQ(row(macOS.notInstalled, 0),
            (ExplainerRow{"folder", Look::warning, "Move Vorli to Applications",
                          "macOS only lets apps living in /Applications run a background helper. This is a "
                          "security guarantee, not a Vorli rule."}));
  EXPECT_EQ(row(macOS.notRegistered, 0),
            (ExplainerRow{"lock.shield", Look::lit, "One small permission",
                          "macOS will ask you to approve a small background helper. It only runs when Vorli "
                          "asks, and uninstalls when you move Vorli to the Trash."}));
  EXPECT_EQ(
      row(macOS.requiresApproval, 0),
      (ExplainerRow{"gearshape", Look::lit, "In System Settings",
                    "Open General → Login Items & Extensions. Scroll to \"Allow in the Background\" and "
                    "turn Vorli on."}));
  EXPECT_EQ(row(macOS.requiresApproval, 1),
            (ExplainerRow{"arrow.right", Look::plain, "Then come back here",
                          "This window catches up automatically. You don't need to do anything else in "
                          "Vorli."}));
  EXPECT_EQ(row(macOS.enabled, 0),
            (ExplainerRow{"checkmark.seal", Look::lit, "Background helper installed",
                          "Vorli can now free memory and flush caches when you press Polish."}));
  EXPECT_EQ(
      row(macOS.notFound, 0),
      (ExplainerRow{"box.missing", Look::warning, "Helper bundle missing",
                    "macOS couldn't find the helper inside the Vorli app bundle. This usually means the "
                    "DMG copy was interrupted or the app got moved while open."}));
}

TEST(OnboardingTextsTest, statusLinesAndButtonsOnMacOS) {
  EXPECT_EQ(macOS.notInstalled.statusLine, "");
  EXPECT_EQ(macOS.notRegistered.statusLine, "Helper not installed yet.");
  EXPECT_EQ(macOS.requiresApproval.statusLine, "Waiting for approval…");
  EXPECT_EQ(macOS.enabled.statusLine, "Helper is set up and ready.");
  EXPECT_EQ(macOS.notFound.statusLine, "");
  EXPECT_EQ(macOS.showApplications, "Open Applications");
  EXPECT_EQ(macOS.askAgain, "Open Settings again");
  EXPECT_EQ(macOS.askAgainHint, "Reopens the System Settings Login Items pane if you closed it");
  EXPECT_EQ(macOS.waitingHint, "Toggle Vorli on in System Settings to continue");
}

TEST(OnboardingTextsTest, linuxTextsSayTheSameWithoutAMac) {
  EXPECT_EQ(linuxDesktop.requiresApproval.sentence,
            "Your system is asking for your password. Enter it to let Vorli's helper work.");
  EXPECT_EQ(linuxDesktop.requiresApproval.rows[0].title, "In the password window");
  EXPECT_EQ(linuxDesktop.requiresApproval.rows[1].title, "Then come back here");
  EXPECT_EQ(linuxDesktop.notInstalled.rows[0].title, "Install Vorli");
  EXPECT_EQ(linuxDesktop.notFound.sentence, "The helper that belongs to Vorli is missing.");
  EXPECT_EQ(linuxDesktop.showApplications, "Show how");
  EXPECT_EQ(linuxDesktop.askAgain, "Ask again");
  EXPECT_EQ(linuxDesktop.noPromptSentence,
            "No password window could be opened. Start your desktop's authentication agent, or ask an "
            "administrator.");
  for (const auto text : allOf(linuxDesktop)) {
    for (const std::string_view foreign : {"Mac", "macOS", "System Settings", "Login Items", "Finder", "Dock",
                                           "DMG", "Applications", "Trash", "up top"}) {
      EXPECT_FALSE(text.contains(foreign)) << text;
    }
  }
}

TEST(OnboardingTextsTest, bothSetsHaveTheSameStates) {
  for (const auto state :
       {&OnboardingTexts::notInstalled, &OnboardingTexts::notRegistered, &OnboardingTexts::requiresApproval,
        &OnboardingTexts::enabled, &OnboardingTexts::notFound}) {
    EXPECT_EQ((macOS.*state).rows.size(), (linuxDesktop.*state).rows.size());
    EXPECT_EQ((macOS.*state).statusLine, (linuxDesktop.*state).statusLine);
    EXPECT_EQ((macOS.*state).title, (linuxDesktop.*state).title);
  }
}

}  // namespace
}  // namespace vorli

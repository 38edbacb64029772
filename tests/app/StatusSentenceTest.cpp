#include "app/StatusSentence.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

std::string sentence(double ringProgress) {
  return statusSentence(SetupState::finished, ringProgress, StatusTexts::macOS);
}

TEST(StatusSentenceTest, unfinishedSetupComesBeforeEverything) {
  for (const double progress : {0.0, 0.6, 0.95}) {
    EXPECT_EQ(statusSentence(SetupState::incomplete, progress),
              "Setup not finished. Tap to return to onboarding.");
  }
}

TEST(StatusSentenceTest, eachStateHasItsSentence) {
  EXPECT_EQ(sentence(0.05), "Your Mac is feeling great. 5 percent under pressure.");
  EXPECT_EQ(sentence(0.6), "Your Mac is warming up. 60 percent under pressure.");
  EXPECT_EQ(sentence(0.93), "Your Mac is under heavy pressure. 93 percent. Tap to polish.");
}

TEST(StatusSentenceTest, onLinuxItSaysComputer) {
  const auto onLinux = [](double progress) {
    return statusSentence(SetupState::finished, progress, StatusTexts::linuxDesktop);
  };
  EXPECT_EQ(onLinux(0.05), "Your computer is feeling great. 5 percent under pressure.");
  EXPECT_EQ(onLinux(0.6), "Your computer is warming up. 60 percent under pressure.");
  EXPECT_EQ(onLinux(0.93), "Your computer is under heavy pressure. 93 percent. Tap to polish.");
}

// The state follows the same thresholds as the dial and the ring, and uses the exact value. So 0.554 is
// warming, although its number is the same as that of 0.5499: the speech must not contradict the picture.
TEST(StatusSentenceTest, theStateIsTakenFromTheExactValueAndTheNumberIsRounded) {
  EXPECT_EQ(sentence(0.5499), "Your Mac is feeling great. 55 percent under pressure.");
  EXPECT_EQ(sentence(0.55), "Your Mac is warming up. 55 percent under pressure.");
  EXPECT_EQ(sentence(0.554), "Your Mac is warming up. 55 percent under pressure.");
  EXPECT_EQ(sentence(0.7999), "Your Mac is warming up. 80 percent under pressure.");
  EXPECT_EQ(sentence(0.8), "Your Mac is under heavy pressure. 80 percent. Tap to polish.");
}

TEST(StatusSentenceTest, numbersHaveNeitherFractionNorSign) {
  EXPECT_EQ(sentence(0.0), "Your Mac is feeling great. 0 percent under pressure.");
  EXPECT_EQ(sentence(0.004), "Your Mac is feeling great. 0 percent under pressure.");
  EXPECT_EQ(sentence(0.005), "Your Mac is feeling great. 1 percent under pressure.");
  EXPECT_EQ(sentence(0.996), "Your Mac is under heavy pressure. 100 percent. Tap to polish.");
  EXPECT_EQ(sentence(1.0), "Your Mac is under heavy pressure. 100 percent. Tap to polish.");
}

}  // namespace
}  // namespace vorli

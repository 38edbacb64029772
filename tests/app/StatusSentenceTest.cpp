#include "app/StatusSentence.h"

namespace vorli {
namespace {

std::string sentence(double ringProgress) {
  return statusSentence(SetupState::finished, ringProgress);
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

#include "base/ResumeState.h"

#include <latch>
#include <thread>
#include <vector>

namespace vorli {
namespace {

TEST(ResumeStateTest, theFirstClaimWins) {
  ResumeState state;
  EXPECT_TRUE(state.claim());
  EXPECT_FALSE(state.claim());
  EXPECT_FALSE(state.claim());
}

TEST(ResumeStateTest, ofTwoThreadsExactlyOneWins) {
  struct Round {
    ResumeState state;
    std::latch bothAreThere{2};
    bool hasFirstWon = false;
    bool hasSecondWon = false;
  };
  std::vector<Round> rounds(500);
  const auto contend = [&](bool Round::*hasWon) {
    for (Round& round : rounds) {
      round.bothAreThere.arrive_and_wait();
      round.*hasWon = round.state.claim();
    }
  };
  std::thread first(contend, &Round::hasFirstWon);
  std::thread second(contend, &Round::hasSecondWon);
  first.join();
  second.join();
  for (const Round& round : rounds) ASSERT_NE(round.hasFirstWon, round.hasSecondWon);
}

}  // namespace
}  // namespace vorli

#include "base/ResumeState.h"

#include <atomic>
#include <thread>

namespace vorli {
namespace {

TEST(ResumeStateTest, theFirstClaimWins) {
  ResumeState state;
  EXPECT_TRUE(state.claim());
  EXPECT_FALSE(state.claim());
  EXPECT_FALSE(state.claim());
}

TEST(ResumeStateTest, ofTwoThreadsExactlyOneWins) {
  for (int round = 0; round < 500; ++round) {
    ResumeState state;
    std::atomic<bool> go = false;
    int wins[2] = {0, 0};
    const auto contend = [&](int& won) {
      while (!go) std::this_thread::yield();
      won = state.claim() ? 1 : 0;
    };
    std::thread first([&] { contend(wins[0]); });
    std::thread second([&] { contend(wins[1]); });
    go = true;
    first.join();
    second.join();
    ASSERT_EQ(wins[0] + wins[1], 1);
  }
}

}  // namespace
}  // namespace vorli

#include "daemon/LogBudget.h"
#include "tests/fakes/ManualScheduler.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vorli::daemon {
namespace {

struct LogBudgetTest : testing::Test {
  using Told = std::vector<std::pair<std::optional<UserId>, std::size_t>>;

  fakes::ManualScheduler scheduler;
  Told told;
  std::unique_ptr<LogBudget> budget = std::make_unique<LogBudget>(
      scheduler, [this](LogBudget::User user, std::size_t count) { told.emplace_back(user, count); });

  int linesOf(LogBudget::User user, int tries) {
    int lines = 0;
    for (int i = 0; i < tries; ++i) lines += budget->take(user);
    return lines;
  }
};

TEST_F(LogBudgetTest, aUserHasTwentyLinesInAWindow) {
  EXPECT_EQ(linesOf(1000, 100), 20);
  scheduler.advance(9.999);
  EXPECT_EQ(linesOf(1000, 1), 0);
  EXPECT_TRUE(told.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(told, (Told{{1000u, 81}}));
  EXPECT_EQ(linesOf(1000, 100), 20);
}

TEST_F(LogBudgetTest, aWindowWithoutOmissionsEndsSilently) {
  EXPECT_EQ(linesOf(1000, 20), 20);
  scheduler.advance(9.999);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(0.001);
  EXPECT_EQ(linesOf(1000, 20), 20);
  EXPECT_TRUE(told.empty());
}

TEST_F(LogBudgetTest, usersDoNotShareTheirLines) {
  EXPECT_EQ(linesOf(1000, 21), 20);
  EXPECT_EQ(linesOf(1001, 21), 20);
  EXPECT_EQ(linesOf(0, 21), 20);
}

TEST_F(LogBudgetTest, unknownUsersShareOneBudget) {
  EXPECT_EQ(linesOf(std::nullopt, 25), 20);
  scheduler.advance(10.0);
  EXPECT_EQ(told, (Told{{std::nullopt, 5}}));
}

TEST_F(LogBudgetTest, itsDestructorReportsTheRemainingOmissions) {
  EXPECT_EQ(linesOf(1000, 23), 20);
  EXPECT_EQ(linesOf(1001, 20), 20);
  budget.reset();
  EXPECT_EQ(told, (Told{{1000u, 3}}));
  scheduler.advance(60.0);
  EXPECT_EQ(told.size(), 1u);
}

}  // namespace
}  // namespace vorli::daemon

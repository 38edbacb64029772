#include "ambient/CalmIntensity.h"
#include "ambient/ClearState.h"
#include "tests/ambient/CalmStep.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Publish.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

namespace vorli {
namespace {

struct CalmIntensityTest : testing::Test {
  fakes::ManualScheduler scheduler;
  std::optional<ClearState> state{std::in_place, scheduler};
  CalmIntensity* calm = &state->calmIntensity;
  std::vector<double> values;
  std::vector<double> times;

  Subscription follow(CalmPace pace) {
    return calm->subscribeToChanges(pace, [this](double value) {
      values.push_back(value);
      times.push_back(scheduler.now());
      EXPECT_EQ(calm->get(), value);
    });
  }
  void polish() { state->runCeremony(0.9, 300.0); }
  // Largest number of values that came within any span of that length.
  std::size_t mostWithin(double seconds) const {
    std::size_t most = 0;
    for (auto first = times.begin(); first != times.end(); ++first) {
      const auto behind = std::lower_bound(first, times.end(), *first + seconds - 1e-6);
      most = std::max(most, static_cast<std::size_t>(behind - first));
    }
    return most;
  }
};

TEST_F(CalmIntensityTest, aSubscriberReceivesTheCurrentValueAtOnce) {
  polish();
  scheduler.advance(0.45);
  const auto subscription =
      calm->subscribe(CalmPace::dial, [this](double value) { values.push_back(value); });
  EXPECT_EQ(values, std::vector<double>{0.5});
}

TEST_F(CalmIntensityTest, theFirstValueComesAtTheNextTurnOfTheLoop) {
  const auto subscription = follow(CalmPace::dial);
  polish();
  EXPECT_TRUE(values.empty());
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{0.0});
}

TEST_F(CalmIntensityTest, nothingRunsWithoutASubscriber) {
  polish();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(150.9);
  EXPECT_EQ(calm->get(), 0.5);
}

TEST_F(CalmIntensityTest, nothingRunsOnceTheLastSubscriberHasLeft) {
  auto subscription = follow(CalmPace::display);
  polish();
  scheduler.advance(0.3);
  subscription.cancel();
  scheduler.advance(1.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(CalmIntensityTest, atTheDisplaysPaceARiseTakesEveryVisibleStep) {
  const auto subscription = follow(CalmPace::display);
  polish();
  scheduler.advance(0.9);
  EXPECT_GE(values.size(), 51u);  // the first and last steps change by less than a level of colour
  EXPECT_LE(values.size(), 55u);
  EXPECT_TRUE(std::ranges::is_sorted(values));
  EXPECT_EQ(values.front(), 0.0);
  EXPECT_EQ(values.back(), 1.0);
  EXPECT_EQ(mostWithin(5 * calmStep), 5u);
}

TEST_F(CalmIntensityTest, atTheDialsPaceItTakesFourASecondAtMostAndReachesOne) {
  const auto subscription = follow(CalmPace::dial);
  polish();
  scheduler.advance(0.9);
  EXPECT_EQ(values.size(), 5u);  // at 0, 0.25, 0.5, 0.75 and the peak
  EXPECT_EQ(values.back(), 1.0);
  scheduler.advance(300.0);
  EXPECT_EQ(values.back(), 0.0);
  EXPECT_LE(mostWithin(60.0), 240u);
}

// Checks each time at which a subscriber of the pace can show another picture.
TEST_F(CalmIntensityTest, noVisibleChangeIsSkipped) {
  constexpr double late = 1e-7;  // sums of the intervals may differ in the last bits
  for (const auto& [pace, interval] :
       {std::pair{CalmPace::dial, 0.25}, std::pair{CalmPace::display, calmStep}}) {
    const auto subscription = follow(pace);
    polish();
    const double peak = scheduler.now() + 54 * calmStep;
    const int pictures = static_cast<int>(300.0 / interval);
    for (int i = 0; i <= pictures; ++i) {
      scheduler.advanceTo(peak + i * interval + late);
      ASSERT_LT(std::abs(values.back() - calm->get()), 1.0 / 256.0) << interval << ' ' << i;
    }
    scheduler.advance(1.0);
  }
}

TEST_F(CalmIntensityTest, aDecayWakesTheLoopAtMostTwiceASecondAndItsSlowBeginningHardlyAtAll) {
  const auto subscription = follow(CalmPace::dial);
  polish();
  scheduler.advance(0.9);
  times.clear();
  scheduler.advance(10.0);
  EXPECT_TRUE(times.empty());  // 10 s into the decay the calm has fallen by less than 1/256
  scheduler.advance(290.0);
  EXPECT_LE(mostWithin(1.0), 2u);
  EXPECT_LE(times.size(), 256u);
  EXPECT_GE(times.size(), 128u);
}

TEST_F(CalmIntensityTest, itsEndIsDeliveredOnceAndOnTime) {
  for (const auto pace : {CalmPace::dial, CalmPace::display}) {
    const auto subscription = follow(pace);
    polish();
    const double begun = scheduler.now();
    scheduler.advance(1000.0);
    EXPECT_EQ(std::ranges::count(values, 0.0), 2);  // the first value and the last
    EXPECT_NEAR(times.back(), begun + 300.9, 1e-3);
    EXPECT_EQ(scheduler.pendingTimers(), 0u);
    values.clear();
  }
}

TEST_F(CalmIntensityTest, aSubscriberAtTheDisplaysPaceSpeedsUpTheRise) {
  const auto slow = follow(CalmPace::dial);
  polish();
  scheduler.advance(0.3);
  values.clear();
  auto quick = calm->subscribeToChanges(CalmPace::display, [](double) {});
  scheduler.advance(0.1);
  EXPECT_EQ(values.size(), 6u);
  quick.cancel();
  scheduler.advance(0.02);
  values.clear();
  scheduler.advance(0.24);
  EXPECT_EQ(values.size(), 0u);
}

TEST_F(CalmIntensityTest, anAssignedValueEndsTheCeremony) {
  const auto subscription = follow(CalmPace::dial);
  polish();
  scheduler.advance(0.5);
  fakes::publish(*calm, 0.4);
  EXPECT_EQ(values.back(), 0.4);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(100.0);
  EXPECT_EQ(calm->get(), 0.4);
  EXPECT_EQ(values.back(), 0.4);
}

TEST_F(CalmIntensityTest, aSubscriberMayStartACeremony) {
  bool restarted = false;
  const auto restart = calm->subscribeToChanges(CalmPace::display, [&](double value) {
    if (value < 0.5 || restarted) return;
    restarted = true;
    state->runCeremony(0.0, 300.0);
  });
  polish();
  scheduler.advance(0.45);
  ASSERT_TRUE(restarted);
  EXPECT_EQ(calm->get(), 0.5);
  scheduler.advance(calmStep);
  EXPECT_EQ(calm->get(), 1.0);
  scheduler.advance(300.0);
  EXPECT_EQ(calm->get(), 0.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(CalmIntensityTest, nothingIsDeliveredAfterItIsDestroyed) {
  const auto subscription = follow(CalmPace::dial);
  polish();
  state.reset();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(1.0);
  EXPECT_TRUE(values.empty());
}

}  // namespace
}  // namespace vorli

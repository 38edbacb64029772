#include "base/SubscriberList.h"

#include <optional>

namespace vorli {
namespace {

using Numbers = std::vector<int>;

struct SubscriberListTest : testing::Test {
  std::function<void(const int&)> record(int label) {
    return [this, label](const int& value) { heard.push_back(label + value); };
  }

  Numbers heard;
  SubscriberList<int> list;
};

TEST_F(SubscriberListTest, subscribersAreCalledInTheOrderOfSubscription) {
  const auto first = list.add(record(10));
  const auto second = list.add(record(20));
  list.deliver(1);
  EXPECT_EQ(heard, (Numbers{11, 21}));
}

TEST_F(SubscriberListTest, aSubscriptionEndsWithItsToken) {
  EXPECT_TRUE(list.empty());
  {
    const auto token = list.add(record(10));
    EXPECT_FALSE(list.empty());
  }
  EXPECT_TRUE(list.empty());
  list.deliver(1);
  EXPECT_TRUE(heard.empty());
}

TEST_F(SubscriberListTest, cancelAndAssignmentEndASubscriptionToo) {
  auto token = list.add(record(10));
  token.cancel();
  token.cancel();
  list.deliver(1);
  token = list.add(record(20));
  token = list.add(record(30));
  list.deliver(2);
  EXPECT_EQ(heard, Numbers{32});
}

TEST_F(SubscriberListTest, aMovedTokenKeepsTheSubscription) {
  auto token = list.add(record(10));
  const auto moved = std::move(token);
  token.cancel();
  list.deliver(1);
  EXPECT_EQ(heard, Numbers{11});
}

TEST_F(SubscriberListTest, aNewcomerDuringDeliveryWaitsForTheNextValue) {
  std::vector<Subscription> late;
  const auto token = list.add([&](const int&) {
    if (late.empty()) late.push_back(list.add(record(10)));
  });
  list.deliver(1);
  EXPECT_TRUE(heard.empty());
  list.deliver(2);
  EXPECT_EQ(heard, Numbers{12});
}

TEST_F(SubscriberListTest, aSubscriberCancelledDuringDeliveryGetsNothingMore) {
  Subscription second;
  const auto first = list.add([&](const int&) { second.cancel(); });
  second = list.add(record(10));
  const auto third = list.add(record(20));
  list.deliver(1);
  EXPECT_EQ(heard, Numbers{21});
}

TEST_F(SubscriberListTest, aSubscriberMayLeaveInItsOwnCall) {
  Subscription token;
  int calls = 0;
  token = list.add([&, sentinel = std::make_shared<int>(7)](const int&) {
    token.cancel();
    calls += *sentinel;
  });
  list.deliver(1);
  list.deliver(2);
  EXPECT_EQ(calls, 7);
  EXPECT_TRUE(list.empty());
}

TEST_F(SubscriberListTest, aDeliveryInsideADeliveryReachesEverybody) {
  const auto first = list.add([&](const int& value) {
    if (value == 1) list.deliver(2);
  });
  const auto second = list.add(record(10));
  list.deliver(1);
  EXPECT_EQ(heard, (Numbers{12, 11}));
}

TEST_F(SubscriberListTest, aTokenMayOutliveItsSource) {
  auto source = std::make_optional<SubscriberList<int>>();
  auto sentinel = std::make_shared<int>();
  auto token = source->add([sentinel](const int&) {});
  EXPECT_EQ(sentinel.use_count(), 2);
  source.reset();
  EXPECT_EQ(sentinel.use_count(), 1);
  token.cancel();
}

TEST_F(SubscriberListTest, aSourceDestroyedDuringDeliveryDeliversNoMore) {
  auto source = std::make_optional<SubscriberList<int>>();
  const auto first = source->add([&](const int&) { source.reset(); });
  const auto second = source->add(record(10));
  source->deliver(1);
  EXPECT_TRUE(heard.empty());
}

TEST_F(SubscriberListTest, aHandlerThatOwnsOtherSubscriptionsToItsSourceEndsThemWithIt) {
  auto owned = std::make_shared<std::vector<Subscription>>();
  auto owner = list.add([owned](const int&) {});
  const auto between = list.add(record(10));
  owned->push_back(list.add(record(20)));
  owned->push_back(list.add(record(30)));
  owned.reset();
  list.deliver(1);
  owner.cancel();
  list.deliver(2);
  EXPECT_EQ(heard, (Numbers{11, 21, 31, 12}));
}

}  // namespace
}  // namespace vorli

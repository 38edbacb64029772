#include "base/Observable.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Publish.h"

#include <optional>
#include <string>
#include <type_traits>

namespace vorli {
namespace {

using Numbers = std::vector<int>;

struct ObservableTest : testing::Test {
  Observable<int>::Handler record() {
    return [this](const int& value) { heard.push_back(value); };
  }

  fakes::ManualScheduler scheduler;
  Published<int, ObservableTest> number{1};
  Numbers heard;
};

struct NumberOwner {
  Published<int, NumberOwner> number{1};
  void set(int value) { number = value; }
};

static_assert(!std::is_constructible_v<Observable<int>, int>);
static_assert(!std::is_assignable_v<Published<int, NumberOwner>&, int>);
static_assert(!std::is_assignable_v<Observable<int>&, int>);

TEST_F(ObservableTest, onlyTheOwnerAssigns) {
  NumberOwner owner;
  const auto token = owner.number.subscribe(record());
  owner.set(2);
  EXPECT_EQ(heard, (Numbers{1, 2}));
}

TEST_F(ObservableTest, aSubscriberGetsTheCurrentValueAtOnceAndEachNewOneInItsAssignment) {
  const auto token = number.subscribe(record());
  EXPECT_EQ(heard, Numbers{1});
  fakes::publish(number, 2);
  EXPECT_EQ(heard, (Numbers{1, 2}));
  EXPECT_EQ(number.get(), 2);
}

TEST_F(ObservableTest, anEqualValueIsDeliveredToo) {
  const auto token = number.subscribe(record());
  fakes::publish(number, 1);
  EXPECT_EQ(heard, (Numbers{1, 1}));
}

TEST_F(ObservableTest, theValueIsStoredBeforeItIsDelivered) {
  Numbers seen;
  const auto token = number.subscribeToChanges([&](const int&) { seen.push_back(number); });
  fakes::publish(number, 5);
  EXPECT_EQ(seen, Numbers{5});
}

TEST_F(ObservableTest, aSubscriberToChangesDoesNotGetTheCurrentValue) {
  const auto token = number.subscribeToChanges(record());
  EXPECT_TRUE(heard.empty());
  fakes::publish(number, 2);
  EXPECT_EQ(heard, Numbers{2});
}

TEST_F(ObservableTest, nothingIsDeliveredAfterTheTokenIsDestroyed) {
  { const auto token = number.subscribe(record()); }
  fakes::publish(number, 2);
  EXPECT_EQ(heard, Numbers{1});
}

TEST_F(ObservableTest, aTokenMayOutliveItsSource) {
  std::optional<Published<int, ObservableTest>> source(std::in_place, 1);
  auto token = source->subscribe(record());
  auto deferred = source->subscribeOnMainLoop(scheduler, record());
  source.reset();
  token.cancel();
  deferred.cancel();
  scheduler.runReady();
  EXPECT_EQ(heard, Numbers{1});
}

TEST_F(ObservableTest, deliveryOnTheMainLoopWaitsForItsTurn) {
  const auto token = number.subscribeOnMainLoop(scheduler, record());
  EXPECT_TRUE(heard.empty());
  scheduler.runReady();
  EXPECT_EQ(heard, Numbers{1});
  fakes::publish(number, 2);
  fakes::publish(number, 3);
  EXPECT_EQ(heard, Numbers{1});
  scheduler.runReady();
  EXPECT_EQ(heard, (Numbers{1, 2, 3}));
}

TEST_F(ObservableTest, deliveryOnTheMainLoopSeesTheFinishedTick) {
  Published<std::string, ObservableTest> other{"old"};
  std::vector<std::string> seen;
  const auto token = number.subscribeOnMainLoop(scheduler, [&](const int&) { seen.push_back(other.get()); });
  scheduler.runReady();
  fakes::publish(number, 2);
  fakes::publish(other, "new");
  scheduler.runReady();
  EXPECT_EQ(seen, (std::vector<std::string>{"old", "new"}));
}

TEST_F(ObservableTest, aPendingValueIsNotDeliveredAfterTheTokenIsDestroyed) {
  auto token = number.subscribeOnMainLoop(scheduler, record());
  fakes::publish(number, 2);
  token.cancel();
  scheduler.runReady();
  EXPECT_TRUE(heard.empty());
}

TEST_F(ObservableTest, aDeferredSubscriberMayLeaveInItsOwnCall) {
  Subscription token;
  token = number.subscribeOnMainLoop(scheduler, [&, sentinel = std::make_shared<int>(7)](const int&) {
    token.cancel();
    heard.push_back(*sentinel);
  });
  fakes::publish(number, 2);
  scheduler.runReady();
  EXPECT_EQ(heard, Numbers{7});
}

}  // namespace
}  // namespace vorli

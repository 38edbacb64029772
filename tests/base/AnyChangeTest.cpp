#include "base/AnyChange.h"
#include "tests/fakes/ManualScheduler.h"

#include <string>

namespace vorli {
namespace {

struct AnyChangeTest : testing::Test {
  std::function<void()> count() {
    return [this] { ++calls; };
  }

  fakes::ManualScheduler scheduler;
  Observable<int> number{1};
  Observable<std::string> text{"a"};
  int calls = 0;
};

TEST_F(AnyChangeTest, comesOnceForThePresentValuesAndOnceForEachChangeOfAny) {
  const auto token = onAnyChange(scheduler, count(), number, text);
  EXPECT_EQ(calls, 0);
  scheduler.runReady();
  EXPECT_EQ(calls, 1);
  number = 2;
  text = "b";
  EXPECT_EQ(calls, 1);
  scheduler.runReady();
  EXPECT_EQ(calls, 3);
}

TEST_F(AnyChangeTest, endsWithItsTokenWithAllThatWasOnItsWay) {
  auto token = onAnyChange(scheduler, count(), number, text);
  number = 2;
  token.cancel();
  text = "b";
  scheduler.runReady();
  EXPECT_EQ(calls, 0);
}

TEST_F(AnyChangeTest, goesOnWhenDetached) {
  onAnyChange(scheduler, count(), number, text).detach();
  scheduler.runReady();
  number = 2;
  scheduler.runReady();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace vorli

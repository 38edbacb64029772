#include "base/AnyChange.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Publish.h"

#include <string>

namespace vorli {
namespace {

struct AnyChangeTest : testing::Test {
  std::function<void()> count() {
    return [this] { ++calls; };
  }

  fakes::ManualScheduler scheduler;
  Published<int, AnyChangeTest> number{1};
  Published<std::string, AnyChangeTest> text{"a"};
  int calls = 0;
};

TEST_F(AnyChangeTest, firesOnceForTheCurrentValuesAndOnceForEachChange) {
  const auto token = onAnyChange(scheduler, count(), number, text);
  EXPECT_EQ(calls, 0);
  scheduler.runReady();
  EXPECT_EQ(calls, 1);
  fakes::publish(number, 2);
  fakes::publish(text, "b");
  EXPECT_EQ(calls, 1);
  scheduler.runReady();
  EXPECT_EQ(calls, 3);
}

TEST_F(AnyChangeTest, pendingCallsAreDroppedWithTheToken) {
  auto token = onAnyChange(scheduler, count(), number, text);
  fakes::publish(number, 2);
  token.cancel();
  fakes::publish(text, "b");
  scheduler.runReady();
  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace vorli

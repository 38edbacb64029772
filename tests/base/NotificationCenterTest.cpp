#include "base/NotificationCenter.h"

#include <string>

namespace vorli {
namespace {

struct Opened {
  int page = 0;
};
struct Closed {};

TEST(NotificationCenterTest, observersOfATypeGetItsPayloadInTheirOrder) {
  NotificationCenter center;
  std::vector<std::string> heard;
  const auto first = center.observe<Opened>(
      [&](const Opened& opened) { heard.push_back("first " + std::to_string(opened.page)); });
  const auto second = center.observe<Opened>(
      [&](const Opened& opened) { heard.push_back("second " + std::to_string(opened.page)); });
  const auto other = center.observe<Closed>([&](const Closed&) { heard.push_back("closed"); });
  center.post(Opened{3});
  EXPECT_EQ(heard, (std::vector<std::string>{"first 3", "second 3"}));
}

TEST(NotificationCenterTest, aPostWithoutObserversDoesNothing) {
  NotificationCenter center;
  center.post(Closed{});
  int calls = 0;
  const auto token = center.observe<Closed>([&](const Closed&) { ++calls; });
  EXPECT_EQ(calls, 0);
}

TEST(NotificationCenterTest, anObserverEndsWithItsToken) {
  NotificationCenter center;
  int calls = 0;
  {
    const auto token = center.observe<Closed>([&](const Closed&) { calls += 1; });
  }
  const auto other = center.observe<Closed>([&](const Closed&) { calls += 10; });
  center.post(Closed{});
  EXPECT_EQ(calls, 10);
}

TEST(NotificationCenterTest, anObserverMayObserveOthersWhileItIsCalled) {
  NotificationCenter center;
  std::vector<Subscription> tokens;
  int closed = 0;
  tokens.push_back(center.observe<Opened>([&](const Opened&) {
    tokens.push_back(center.observe<Closed>([&](const Closed&) { ++closed; }));
    center.post(Closed{});
  }));
  center.post(Opened{});
  EXPECT_EQ(closed, 1);
}

}  // namespace
}  // namespace vorli

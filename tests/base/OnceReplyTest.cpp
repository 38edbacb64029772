#include "base/OnceReply.h"

#include <memory>
#include <vector>

namespace vorli {
namespace {

struct OnceReplyTest : testing::Test {
  OnceReply<int> makeReply() {
    return OnceReply<int>([this](int value) { answers.push_back(value); });
  }

  std::vector<int> answers;
};

TEST_F(OnceReplyTest, aSecondAnswerIsDropped) {
  auto reply = makeReply();
  std::move(reply)(1);
  std::move(reply)(2);
  EXPECT_EQ(answers, std::vector<int>{1});
}

TEST_F(OnceReplyTest, aDroppedReplyAnswersNobodyAndReleasesItsCaptures) {
  auto sentinel = std::make_shared<int>();
  {
    const OnceReply<int> reply([sentinel](int) { *sentinel = 1; });
  }
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_EQ(*sentinel, 0);
}

TEST_F(OnceReplyTest, anEmptyOrMovedReplyDoesNothing) {
  OnceReply<int> empty;
  std::move(empty)(1);
  auto reply = makeReply();
  auto moved = std::move(reply);
  std::move(reply)(2);
  std::move(moved)(3);
  EXPECT_EQ(answers, std::vector<int>{3});
}

TEST_F(OnceReplyTest, assignmentDropsThePreviousReply) {
  auto first = makeReply();
  first = makeReply();
  std::move(first)(5);
  EXPECT_EQ(answers, std::vector<int>{5});
}

TEST_F(OnceReplyTest, isUsedUpBeforeItsHandlerRuns) {
  OnceReply<int> reply;
  reply = OnceReply<int>([&](int value) {
    answers.push_back(value);
    std::move(reply)(value + 1);
  });
  std::move(reply)(1);
  EXPECT_EQ(answers, std::vector<int>{1});
}

}  // namespace
}  // namespace vorli

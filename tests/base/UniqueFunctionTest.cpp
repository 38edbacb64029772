#include "base/UniqueFunction.h"

#include <string>

namespace vorli {
namespace {

TEST(UniqueFunctionTest, ownsMoveOnlyCaptures) {
  UniqueFunction<int(int)> add = [held = std::make_unique<int>(40)](int more) { return *held + more; };
  EXPECT_EQ(add(2), 42);
}

TEST(UniqueFunctionTest, isEmptyByDefaultFromNullAndAfterAMove) {
  UniqueFunction<void()> none;
  EXPECT_FALSE(none);
  UniqueFunction<void()> null = nullptr;
  EXPECT_FALSE(null);
  UniqueFunction<void()> some = [] {};
  EXPECT_TRUE(some);
  const auto moved = std::move(some);
  EXPECT_TRUE(moved);
  EXPECT_FALSE(some);
}

TEST(UniqueFunctionTest, passesMoveOnlyArgumentsAndReferences) {
  UniqueFunction<std::string(std::unique_ptr<std::string>, int&)> take = [](std::unique_ptr<std::string> text,
                                                                            int& count) {
    ++count;
    return *text;
  };
  int count = 0;
  EXPECT_EQ(take(std::make_unique<std::string>("moved"), count), "moved");
  EXPECT_EQ(count, 1);
}

TEST(UniqueFunctionTest, keepsItsStateFromCallToCall) {
  UniqueFunction<int()> next = [n = 0]() mutable { return ++n; };
  next();
  auto moved = std::move(next);
  EXPECT_EQ(moved(), 2);
}

TEST(UniqueFunctionTest, dropsItsTargetWhenAssigned) {
  auto token = std::make_shared<int>();
  UniqueFunction<void()> holder = [token] {};
  EXPECT_EQ(token.use_count(), 2);
  holder = nullptr;
  EXPECT_EQ(token.use_count(), 1);
}

TEST(UniqueFunctionDeathTest, callingAnEmptyOneStopsTheProgram) {
  UniqueFunction<void()> none;
  EXPECT_DEATH(none(), "broken invariant");
}

}  // namespace
}  // namespace vorli

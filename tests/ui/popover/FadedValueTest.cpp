#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/FadedValue.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli::ui {
namespace {

class FadedValueTest : public testing::Test {
 protected:
  using Faded = FadedValue<std::string>;

  FadedValueTest() { value.jumpTo("old"); }

  fakes::ManualScheduler clock;
  int exchanges = 0;
  Faded value{clock, [this] { ++exchanges; }};
};

TEST_F(FadedValueTest, oldValueFadesOutBeforeTheNewOneFadesIn) {
  value.fadeTo("new");
  EXPECT_EQ(value.shown(), "old");
  EXPECT_EQ(value.wanted(), "new");
  EXPECT_EQ(value.opacity(clock.now()), 1.0);
  clock.advance(Faded::outSeconds);
  EXPECT_EQ(value.shown(), "new");
  EXPECT_EQ(value.opacity(clock.now()), 0.0);
  clock.advance(Faded::inSeconds);
  EXPECT_EQ(value.opacity(clock.now()), 1.0);
  EXPECT_EQ(exchanges, 1);
}

TEST_F(FadedValueTest, oldValueCanFadeOutAtAnotherPace) {
  value.fadeTo("new", Animation::easeInOut(0.6));
  clock.advance(0.3);
  EXPECT_NEAR(value.opacity(clock.now()), 0.5, 1e-9);
  clock.advance(0.299);
  EXPECT_EQ(value.shown(), "old");
  clock.advance(0.002);
  EXPECT_EQ(value.shown(), "new");
  EXPECT_LT(value.opacity(clock.now()), 0.02);
  clock.advance(0.18);
  EXPECT_EQ(value.opacity(clock.now()), 1.0);
}

TEST_F(FadedValueTest, sameValueDoesNotMove) {
  value.fadeTo("old");
  EXPECT_LT(value.restsAt(), clock.now());
}

TEST_F(FadedValueTest, lastOfSeveralValuesIsShown) {
  value.fadeTo("new");
  clock.advance(Faded::outSeconds / 2);
  value.fadeTo("newest");
  clock.advance(Faded::outSeconds / 2 + 0.001);
  EXPECT_EQ(value.shown(), "newest");
  EXPECT_EQ(exchanges, 1);
}

TEST_F(FadedValueTest, jumpEndsAFade) {
  value.fadeTo("new");
  value.jumpTo("there");
  clock.advance(1.0);
  EXPECT_EQ(value.shown(), "there");
  EXPECT_EQ(value.opacity(clock.now()), 1.0);
  EXPECT_EQ(exchanges, 0);
}

TEST_F(FadedValueTest, nothingHappensAfterItsDestruction) {
  auto* gone = new Faded(clock, [this] { ++exchanges; });
  gone->fadeTo("new");
  delete gone;
  clock.advance(1.0);
  EXPECT_EQ(exchanges, 0);
}

}  // namespace
}  // namespace vorli::ui

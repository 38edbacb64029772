#include "flows/OnboardingDoneView.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

struct OnboardingDoneViewTest : testing::Test {
  fakes::ManualScheduler scheduler;
  fakes::KeyValueStore defaults;
  OnboardingFlowState flow{defaults};
  OnboardingDoneView view{scheduler, flow, HostSystem::macOS};
};

TEST_F(OnboardingDoneViewTest, saysThanksAndHowToGoOn) {
  EXPECT_EQ(view.title(), "You're all set");
  EXPECT_EQ(view.sentence(), "When your Mac feels tight, click the Vorli icon up top and press Polish.");
  EXPECT_EQ(view.buttonTitle(), "Start using Vorli");
  const OnboardingDoneView onLinux{scheduler, flow, HostSystem::linuxDesktop};
  EXPECT_EQ(onLinux.sentence(),
            "When your computer feels tight, click the Vorli icon in the panel and press Polish.");
}

TEST_F(OnboardingDoneViewTest, itsButtonFinishesTheFirstSteps) {
  flow.begin(OnboardingFlowState::Preview::off);
  flow.completeHelperStep();
  view.buttonPressed();
  EXPECT_TRUE(flow.isSetupComplete());
}

TEST_F(OnboardingDoneViewTest, ticksAppearOneByOneAndThenTheCheckIsDrawn) {
  view.appear();
  EXPECT_DOUBLE_EQ(view.ticks.shown(), 0.0);
  scheduler.advance(0.144);
  EXPECT_NEAR(view.ticks.shown(), 6.0, 1e-9);
  EXPECT_DOUBLE_EQ(view.checkDrawn.shown(), 0.0);
  EXPECT_DOUBLE_EQ(view.checkPop.shown(), 0.86);
  scheduler.advance(0.144);
  EXPECT_NEAR(view.ticks.shown(), 12.0, 1e-9);
  EXPECT_NEAR(view.checkDrawn.shown(), 0.0, 1e-9);
  scheduler.advance(0.36);
  EXPECT_DOUBLE_EQ(view.checkDrawn.shown(), 1.0);
  scheduler.advance(2.0);
  EXPECT_DOUBLE_EQ(view.checkPop.shown(), 1.0);
}

}  // namespace
}  // namespace vorli

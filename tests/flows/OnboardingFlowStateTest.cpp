#include "flows/OnboardingFlowState.h"
#include "tests/fakes/KeyValueStore.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Step = OnboardingFlowState::Step;
using Preview = OnboardingFlowState::Preview;

struct OnboardingFlowStateTest : testing::Test {
  fakes::KeyValueStore defaults;
  OnboardingFlowState flow{defaults};

  void store(std::optional<bool> completed, std::optional<bool> doneSeen) {
    if (completed) defaults.values["hasCompletedOnboarding"] = *completed;
    if (doneSeen) defaults.values["hasSeenDoneScreen"] = *doneSeen;
  }
};

TEST_F(OnboardingFlowStateTest, aFirstLaunchBeginsAtTheHelperStep) {
  flow.begin(Preview::off);
  EXPECT_EQ(flow.step.get(), Step::helper);
  EXPECT_FALSE(flow.isSetupComplete());
}

TEST_F(OnboardingFlowStateTest, theStepFollowsTheTwoKeys) {
  struct Row {
    std::optional<bool> completed, doneSeen;
    Step step;
  };
  for (const auto& row :
       {Row{false, std::nullopt, Step::helper}, Row{false, true, Step::helper},
        Row{true, std::nullopt, Step::done}, Row{true, false, Step::done}, Row{true, true, Step::finished}}) {
    defaults.values.clear();
    store(row.completed, row.doneSeen);
    flow.begin(Preview::off);
    EXPECT_EQ(flow.step.get(), row.step);
    EXPECT_EQ(flow.isSetupComplete(), row.step == Step::finished);
  }
}

TEST_F(OnboardingFlowStateTest, theStepIsAssignedOnlyWhenItChanges) {
  std::vector<Step> seen;
  const auto watch = flow.step.subscribeToChanges([&](Step step) { seen.push_back(step); });
  flow.begin(Preview::off);
  flow.updateStep();
  EXPECT_TRUE(seen.empty());
  flow.completeHelperStep();
  flow.updateStep();
  flow.completeDoneStep();
  EXPECT_EQ(seen, (std::vector<Step>{Step::done, Step::finished}));
}

TEST_F(OnboardingFlowStateTest, eachStepIsStoredWhenItIsPassed) {
  flow.begin(Preview::off);
  flow.completeHelperStep();
  EXPECT_EQ(defaults.values.at("hasCompletedOnboarding"), StoredValue(true));
  EXPECT_FALSE(defaults.values.contains("hasSeenDoneScreen"));
  flow.completeDoneStep();
  EXPECT_EQ(defaults.values.at("hasSeenDoneScreen"), StoredValue(true));
}

TEST_F(OnboardingFlowStateTest, aUserOfABuildWithoutFirstStepsSkipsThem) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("6");
  flow.begin(Preview::off);
  EXPECT_TRUE(flow.isSetupComplete());
  EXPECT_EQ(defaults.values.at("hasCompletedOnboarding"), StoredValue(true));
  EXPECT_EQ(defaults.values.at("hasSeenDoneScreen"), StoredValue(true));
}

TEST_F(OnboardingFlowStateTest, anUnfinishedFirstLaunchIsNotTakenForEarlierUse) {
  flow.begin(Preview::off);
  defaults.values["vorli.lastLaunchedBuild"] = std::string("7");  // a later step of that launch
  OnboardingFlowState next{defaults};
  next.begin(Preview::off);
  EXPECT_EQ(next.step.get(), Step::helper);
}

TEST_F(OnboardingFlowStateTest, theKeysDecideForAUserOfAnEarlierBuild) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("6");
  store(false, std::nullopt);
  flow.begin(Preview::off);
  EXPECT_EQ(flow.step.get(), Step::helper);
}

TEST_F(OnboardingFlowStateTest, thePreviewBeginsAtTheHelperStepAndTouchesNoKey) {
  store(true, true);
  flow.begin(Preview::on);
  EXPECT_EQ(flow.step.get(), Step::helper);
  flow.completeHelperStep();
  EXPECT_EQ(flow.step.get(), Step::done);
  EXPECT_TRUE(flow.previewForce());
  flow.completeDoneStep();
  EXPECT_EQ(flow.step.get(), Step::finished);
  EXPECT_FALSE(flow.previewForce());
  EXPECT_TRUE(defaults.writes.empty());
}

TEST_F(OnboardingFlowStateTest, thePreviewComputesTheHelperStepAnew) {
  flow.begin(Preview::on);
  flow.completeHelperStep();
  flow.updateStep();
  EXPECT_EQ(flow.step.get(), Step::helper);
}

}  // namespace
}  // namespace vorli

#include "flows/OnboardingWindowController.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/SheetWindow.h"
#include "tests/flows/OnboardingFixture.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct OnboardingWindowControllerTest : OnboardingFixture, OnboardingContentHost {
  void installHelperStep(OnboardingView& view, PreviewPickerBar* given) override {
    installed.emplace_back("helper");
    helperView = &view;
    bar = given;
  }
  void installDoneStep(OnboardingDoneView& view, PreviewPickerBar* given) override {
    installed.emplace_back("done");
    doneView = &view;
    bar = given;
  }
  void launch(Preview preview = Preview::off) {
    flow.begin(preview);
    controller.showIfNeeded();
    scheduler.runReady();
  }

  fakes::SheetWindow window;
  fakes::ApplicationHost host;
  Strings installed;
  OnboardingView* helperView = nullptr;
  OnboardingDoneView* doneView = nullptr;
  PreviewPickerBar* bar = nullptr;
  OnboardingWindowController controller{{needs(HostSystem::linuxDesktop), window, host, *this}};
};

TEST_F(OnboardingWindowControllerTest, aFirstLaunchShowsTheHelperStep) {
  launch();
  EXPECT_TRUE(window.isOpen);
  EXPECT_TRUE(controller.isOpen());
  EXPECT_EQ(window.title, "Vorli");
  EXPECT_EQ(installed, Strings{"helper"});
  EXPECT_EQ(bar, nullptr);
  EXPECT_EQ(host.activations, 1);
}

TEST_F(OnboardingWindowControllerTest, afterTheHelperStepALaunchOpensAtTheDoneStep) {
  defaults.values["hasCompletedOnboarding"] = true;
  launch();
  EXPECT_EQ(installed, Strings{"done"});
}

TEST_F(OnboardingWindowControllerTest, afterBothStepsNoWindowAppears) {
  defaults.values["hasCompletedOnboarding"] = true;
  defaults.values["hasSeenDoneScreen"] = true;
  launch();
  EXPECT_EQ(window.openings, 0);
  EXPECT_EQ(host.activations, 0);
}

TEST_F(OnboardingWindowControllerTest, theStepsFollowEachOtherAndTheLastClosesTheWindow) {
  service.rawStatus = 1;
  launch();
  helperView->primaryPressed();
  scheduler.runReady();
  EXPECT_EQ(installed, (Strings{"helper", "done"}));
  EXPECT_TRUE(window.isOpen);
  doneView->buttonPressed();
  scheduler.runReady();
  EXPECT_FALSE(window.isOpen);
  EXPECT_FALSE(controller.isOpen());
  controller.showIfNeeded();
  EXPECT_EQ(window.openings, 1);
}

TEST_F(OnboardingWindowControllerTest, anOpenWindowComesToTheFront) {
  launch();
  controller.showIfNeeded();
  EXPECT_EQ(window.openings, 1);
  EXPECT_EQ(window.broughtToFront, 1);
  EXPECT_EQ(host.activations, 2);
}

TEST_F(OnboardingWindowControllerTest, aClosedWindowStoresNothingAndOpensAgain) {
  launch();
  defaults.writes.clear();
  window.close();
  EXPECT_FALSE(controller.isOpen());
  EXPECT_TRUE(defaults.writes.empty());
  controller.showIfNeeded();
  scheduler.runReady();
  EXPECT_EQ(window.openings, 2);
  EXPECT_EQ(installed, (Strings{"helper", "helper"}));
}

TEST_F(OnboardingWindowControllerTest, anOpenWindowClosesWhenSetupIsFoundComplete) {
  launch();
  defaults.values["hasCompletedOnboarding"] = true;
  defaults.values["hasSeenDoneScreen"] = true;
  controller.showIfNeeded();
  EXPECT_FALSE(window.isOpen);
}

TEST_F(OnboardingWindowControllerTest, aClosedWindowFollowsNothing) {
  launch();
  window.close();
  flow.completeHelperStep();
  scheduler.runReady();
  EXPECT_EQ(installed, Strings{"helper"});
  EXPECT_FALSE(window.isOpen);
}

TEST_F(OnboardingWindowControllerTest, thePreviewOpensAtTheHelperStepWithItsBar) {
  defaults.values["hasCompletedOnboarding"] = true;
  defaults.values["hasSeenDoneScreen"] = true;
  launch(Preview::on);
  EXPECT_EQ(installed, Strings{"helper"});
  EXPECT_NE(bar, nullptr);
}

TEST_F(OnboardingWindowControllerTest, thePreviewsBarShowsEveryStepAndState) {
  launch(Preview::on);
  std::vector<OnboardingView::State> states;
  for (const auto& choice : PreviewPickerBar::choices()) {
    bar->pick(choice);
    scheduler.runReady();
    EXPECT_TRUE(bar->isPicked(choice)) << choice.title;
    if (choice.step == Step::helper) states.push_back(helperView->state());
  }
  using State = OnboardingView::State;
  EXPECT_EQ(states, (std::vector<State>{State::enabled, State::notInstalled, State::notRegistered,
                                        State::notRegistered, State::requiresApproval, State::enabled,
                                        State::notFound}));
  EXPECT_EQ(installed, (Strings{"helper", "done"}));
  bar->pick(PreviewPickerBar::choices().front());
  scheduler.runReady();
  EXPECT_EQ(installed.back(), "helper");
}

TEST_F(OnboardingWindowControllerTest, thePreviewEndsWithItsLastStepAndLeavesTheKeysAlone) {
  launch(Preview::on);
  bar->pick(PreviewPickerBar::choices().back());
  scheduler.runReady();
  doneView->buttonPressed();
  scheduler.runReady();
  EXPECT_FALSE(window.isOpen);
  EXPECT_TRUE(defaults.values.empty());
}

}  // namespace
}  // namespace vorli

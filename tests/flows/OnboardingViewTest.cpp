#include "flows/OnboardingView.h"
#include "tests/flows/OnboardingFixture.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;
using State = OnboardingView::State;
using Mood = OnboardingView::Mood;

struct OnboardingViewTest : OnboardingFixture {
  std::optional<OnboardingView> view;

  /// The view with this raw status of the registration.
  OnboardingView& appearWith(int rawStatus, HostSystem system = HostSystem::linuxDesktop) {
    service.rawStatus = rawStatus;
    view.emplace(needs(system));
    view->appear();
    scheduler.runReady();
    service.calls.clear();
    return *view;
  }
};

TEST_F(OnboardingViewTest, eachStatusHasItsState) {
  const std::pair<int, State> rows[] = {{0, State::notRegistered}, {2, State::requiresApproval},
                                        {1, State::enabled},       {3, State::notFound},
                                        {7, State::notRegistered}, {100, State::notRegistered}};
  for (const auto& [raw, state] : rows) EXPECT_EQ(appearWith(raw).state(), state) << raw;
}

TEST_F(OnboardingViewTest, aProgramThatIsNotInstalledSaysSoWhateverTheStatusIs) {
  bundle.path = "/Volumes/Vorli/Vorli.app";
  for (const int raw : {0, 1, 2, 3, 7}) {
    EXPECT_EQ(appearWith(raw).state(), State::notInstalled);
    EXPECT_EQ(view->title(), "Almost there");
    EXPECT_EQ(view->mood(), Mood::trouble);
    EXPECT_EQ(view->statusLine(), "");
  }
}

TEST_F(OnboardingViewTest, aFirstLaunchOffersToInstallTheHelper) {
  appearWith(0);
  EXPECT_EQ(view->title(), "Welcome to Vorli");
  EXPECT_EQ(view->statusLine(), "Helper not installed yet.");
  EXPECT_EQ(view->statusLineAccessibilityText(), "Status: Helper not installed yet.");
  EXPECT_EQ(view->primaryButton().title, "Install Helper");
  EXPECT_TRUE(view->primaryButton().isActive);
  EXPECT_EQ(view->secondaryButton(), std::nullopt);
  EXPECT_EQ(view->mood(), Mood::ready);
}

TEST_F(OnboardingViewTest, theInstallButtonRestsUntilTheRegistrationHasSettled) {
  appearWith(0);
  view->primaryPressed();
  EXPECT_EQ(service.calls, Strings{"register"});
  EXPECT_FALSE(view->primaryButton().isActive);
  view->primaryPressed();
  scheduler.advance(0.4 - frame);
  EXPECT_TRUE(view->isInstalling);
  scheduler.advance(frame);
  EXPECT_FALSE(view->isInstalling);
  EXPECT_EQ(service.calls, Strings{"register"});
  EXPECT_EQ(view->state(), State::notRegistered);
}

TEST_F(OnboardingViewTest, aRegistrationThatNeedsApprovalOpensItsPlaceAfterFourTenths) {
  appearWith(0);
  service.statusAfterRegister = 2;
  view->primaryPressed();
  scheduler.advance(0.4 - frame);
  EXPECT_EQ(service.calls, Strings{"register"});
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, (Strings{"register", "open login items"}));
  EXPECT_EQ(view->title(), "Waiting for approval");
  EXPECT_EQ(view->mood(), Mood::waiting);
}

TEST_F(OnboardingViewTest, anApprovalIsAskedForEvenIfTheSystemIsSlowToSayThatItIsMissing) {
  appearWith(0);
  service.statusAfterRead = 2;
  service.readSeconds = 0.3;
  view->primaryPressed();
  scheduler.advance(0.7 - frame);
  EXPECT_TRUE(view->isInstalling);
  scheduler.advance(frame);
  EXPECT_FALSE(view->isInstalling);
  EXPECT_EQ(service.calls, (Strings{"register", "open login items"}));
}

TEST_F(OnboardingViewTest, aRegistrationThatSucceedsAtOnceOpensNothing) {
  appearWith(0);
  service.statusAfterRegister = 1;
  view->primaryPressed();
  scheduler.advance(1.0);
  EXPECT_EQ(service.calls, Strings{"register"});
  EXPECT_EQ(view->state(), State::enabled);
}

TEST_F(OnboardingViewTest, aFailedRegistrationLeavesTheButtonReady) {
  appearWith(0);
  service.registerResult = std::unexpected("refused");
  view->primaryPressed();
  scheduler.advance(1.0);
  EXPECT_EQ(view->state(), State::notRegistered);
  EXPECT_TRUE(view->primaryButton().isActive);
}

TEST_F(OnboardingViewTest, waitingCatchesUpWhenTheStatusChangesElsewhere) {
  appearWith(2);
  int changes = 0;
  const auto content = view->subscribeToContent([&] { ++changes; });
  EXPECT_EQ(view->secondaryButton(),
            (OnboardingButton{.title = "Waiting…",
                              .isActive = false,
                              .accessibilityLabel = "Waiting for helper approval",
                              .accessibilityHint = "Enter your password to continue"}));
  EXPECT_EQ(view->primaryButton().accessibilityHint, "Opens the password window again if you closed it");
  service.changeStatus(1);
  scheduler.runReady();
  EXPECT_EQ(view->state(), State::enabled);
  EXPECT_GE(changes, 1);
  EXPECT_EQ(announcements.said.back(), "All set up. Helper is approved.");
}

TEST_F(OnboardingViewTest, waitingAsksAgainWhenPressed) {
  appearWith(2);
  view->primaryPressed();
  EXPECT_EQ(service.calls, Strings{"open login items"});
  view->secondaryPressed();
  EXPECT_EQ(service.calls, Strings{"open login items"});
}

TEST_F(OnboardingViewTest, aMissingPasswordWindowIsShownAndNotWaitedFor) {
  for (const int raw : {0, 2}) {
    appearWith(raw);
    service.missPrompt();
    scheduler.runReady();
    EXPECT_EQ(view->title(), "Almost there");
    EXPECT_EQ(view->sentence(),
              "No password window could be opened. Start your desktop's authentication agent, or ask an "
              "administrator.");
    EXPECT_EQ(announcements.said.back(), std::string(view->title()) + ". " + std::string(view->sentence()));
    EXPECT_EQ(view->mood(), Mood::trouble);
    view->primaryPressed();  // the next attempt
    EXPECT_NE(view->title(), "Almost there");
    scheduler.advance(1.0);
  }
}

TEST_F(OnboardingViewTest, aMissingPasswordWindowOffersToTryAgainInsteadOfWaiting) {
  appearWith(2);
  service.missPrompt();
  scheduler.runReady();
  EXPECT_EQ(view->statusLine(), "");
  ASSERT_TRUE(view->secondaryButton().has_value());
  EXPECT_EQ(view->secondaryButton()->title, "Try again");
  service.rawStatus = 1;
  view->secondaryPressed();
  EXPECT_EQ(view->state(), State::enabled);
  EXPECT_EQ(view->title(), "All set up");
}

TEST_F(OnboardingViewTest, tryAgainReadsTheStatus) {
  appearWith(3);
  EXPECT_EQ(view->secondaryButton()->title, "Try again");
  service.rawStatus = 0;
  view->secondaryPressed();
  EXPECT_EQ(view->state(), State::notRegistered);
}

TEST_F(OnboardingViewTest, continueAsksForNoticesAndPassesTheStep) {
  flow.begin(Preview::off);
  appearWith(1);
  EXPECT_EQ(view->primaryButton().title, "Continue");
  EXPECT_EQ(view->secondaryButton(), std::nullopt);
  view->primaryPressed();
  EXPECT_EQ(authorizationRequests, 1);
  EXPECT_EQ(flow.step.get(), Step::done);
}

TEST_F(OnboardingViewTest, theApplicationsFolderOpensOnMacOS) {
  appearWith(3, HostSystem::macOS);
  EXPECT_EQ(view->primaryButton().title, "Open Applications");
  view->primaryPressed();
  EXPECT_EQ(links.opened, Strings{"file:///Applications/"});
}

TEST_F(OnboardingViewTest, theWayToInstallIsAPageOrElseTheProgramsFolder) {
  appearWith(3);
  EXPECT_EQ(view->primaryButton().title, "Show how");
  view->primaryPressed();
  EXPECT_TRUE(links.opened.empty());
  EXPECT_EQ(fileViewer.revealed, Strings{bundle.path});

  auto withPlaceholder = needs(HostSystem::linuxDesktop);
  withPlaceholder.installPage = "REPLACE_WITH_INSTALL_PAGE";
  view.emplace(withPlaceholder);
  view->primaryPressed();
  EXPECT_TRUE(links.opened.empty());
  EXPECT_EQ(fileViewer.revealed.size(), 2u);

  auto withPage = needs(HostSystem::linuxDesktop);
  withPage.installPage = "https://vorli.test/install";
  view.emplace(withPage);
  view->primaryPressed();
  EXPECT_EQ(links.opened, Strings{"https://vorli.test/install"});
  EXPECT_EQ(fileViewer.revealed.size(), 2u);
  links.hasProgram = false;
  view->primaryPressed();
  EXPECT_EQ(fileViewer.revealed.size(), 3u);
}

TEST_F(OnboardingViewTest, eachStateIsAnnouncedOnce) {
  appearWith(0);
  service.changeStatus(0);
  scheduler.runReady();
  manager->refreshStatus();
  scheduler.runReady();
  EXPECT_EQ(announcements.said.size(), 1u);
  service.changeStatus(2);
  scheduler.runReady();
  EXPECT_EQ(announcements.said,
            (Strings{"Welcome to Vorli. Vorli polishes your computer when things slow down, frees memory and "
                     "flushes caches in seconds to make it feel new again.",
                     "Waiting for approval. Your system is asking for your password. Enter it to let Vorli's "
                     "helper work."}));
}

TEST_F(OnboardingViewTest, appearingReadsTheStatus) {
  service.rawStatus = 3;
  view.emplace(needs(HostSystem::linuxDesktop));
  EXPECT_EQ(view->state(), State::notRegistered);
  view->appear();
  EXPECT_EQ(view->state(), State::notFound);
}

TEST_F(OnboardingViewTest, theHaloBreathesThereAndBack) {
  appearWith(0);
  EXPECT_DOUBLE_EQ(view->haloBreath.shown(), 0.0);
  scheduler.advance(2.1);
  EXPECT_NEAR(view->haloBreath.shown(), 0.5, 1e-6);
  scheduler.advance(2.1);
  EXPECT_NEAR(view->haloBreath.shown(), 1.0, 1e-6);
  scheduler.advance(4.2);
  EXPECT_NEAR(view->haloBreath.shown(), 0.0, 1e-6);
}

TEST_F(OnboardingViewTest, thePreviewReplacesStatusAndPlace) {
  bundle.path = "/tmp/build/vorli";
  flow.begin(Preview::on);
  appearWith(1);
  EXPECT_EQ(view->state(), State::notInstalled);
  flow.preview(Step::helper, Location::installed, Case::requiresApproval);
  EXPECT_EQ(view->state(), State::requiresApproval);
  scheduler.runReady();
  EXPECT_TRUE(announcements.said.back().starts_with("Waiting for approval"));
}

TEST_F(OnboardingViewTest, overridesCountInThePreviewOnly) {
  flow.begin(Preview::off);
  flow.preview(Step::helper, Location::elsewhere, Case::notFound);
  EXPECT_EQ(appearWith(1).state(), State::enabled);
}

}  // namespace
}  // namespace vorli

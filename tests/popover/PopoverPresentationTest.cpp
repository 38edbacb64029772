#include "popover/PopoverView.h"
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"

namespace vorli {
namespace {

using Phase = PopoverView::PresentationPhase;
using Segment = CulpritSentence::Segment;

constexpr const char* breathingRoom = "Now, your Mac has room to breathe.";

struct PopoverPresentationTest : PolishFixture {
  PopoverPresentationTest() {
    store.setObject("hasShownLaunchCeremony", true);
    workspace.installed["/opt/notes"] = {.bundleIdentifier = "notes", .displayName = "Notes"};
    showRing(0.1);
  }

  void appear() { notifications.post(VorliAnimateAppear{}); }
  void dismiss() { notifications.post(VorliAnimateDismiss{}); }
  void open() {
    appear();
    scheduler.advance(10.0);
    heights.clear();
  }
  void showRing(double progress) {
    fakes::publish(monitor.ringProgress, progress);
    scheduler.runReady();
    fakes::publish(view->animatedProgress, progress);
    fakes::publish(view->animatedState, ringState(progress));
  }
  void hog(const std::string& name, std::uint64_t bytes = 1) {
    ProcessSnapshot row;
    row.name = row.displayName = name;
    row.residentBytes = bytes;
    row.activationPolicy = ports::ActivationPolicy::regular;
    auto rows = monitor.topMemoryHogs.get();
    rows.push_back(row);
    fakes::publish(monitor.topMemoryHogs, rows);
  }
  void hogInFolder() {
    ProcessSnapshot row;
    row.name = "notes";
    row.executablePath = "/opt/notes";
    fakes::publish(monitor.topMemoryHogs, std::vector{row});
  }
  double now() const { return scheduler.now(); }

  std::vector<double> heights;
  Subscription sizes = notifications.observe<VorliPopoverSize>([this](const VorliPopoverSize& size) {
    EXPECT_EQ(size.width, 270.0);
    heights.push_back(size.height);
  });
};

TEST_F(PopoverPresentationTest, theContentUnfoldsOverATurnOfTheLoop) {
  EXPECT_EQ(view->presentationPhase(), Phase::folded);
  EXPECT_EQ(view->presentationOpacity(now()), 0.0);
  appear();
  EXPECT_EQ(view->presentationPhase(), Phase::folded);
  EXPECT_EQ(heights, std::vector{240.0});
  scheduler.runReady();
  EXPECT_EQ(view->presentationPhase(), Phase::visible);
  EXPECT_EQ(view->presentationOpacity(now()), 0.0);
  EXPECT_NEAR(view->presentationOpacity(now() + 0.07), 0.684643, 1e-5);
  EXPECT_EQ(view->presentationOpacity(now() + 0.14), 1.0);
}

TEST_F(PopoverPresentationTest, theContentIsGoneBeforeTheRollUpEnds) {
  open();
  dismiss();
  EXPECT_EQ(view->presentationPhase(), Phase::folded);
  EXPECT_NEAR(view->presentationOpacity(now() + 0.06), 1.0 - 0.315357, 1e-5);
  EXPECT_EQ(view->presentationOpacity(now() + 0.12), 0.0);
}

TEST_F(PopoverPresentationTest, dismissingAFoldedViewChangesNothing) {
  int changes = 0;
  const auto watching = view->subscribeToContent([&] { ++changes; });
  dismiss();
  scheduler.runReady();
  EXPECT_EQ(view->presentationPhase(), Phase::folded);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(view->motion(now()), PopoverMotion::none);
}

TEST_F(PopoverPresentationTest, everyOpeningFoldsFirstAndReportsTheSize) {
  open();
  appear();
  EXPECT_EQ(view->presentationOpacity(now()), 0.0);
  EXPECT_EQ(heights, std::vector{240.0});
}

TEST_F(PopoverPresentationTest, aDismissalInTheTurnOfTheOpeningWins) {
  appear();
  dismiss();
  scheduler.runReady();
  EXPECT_EQ(view->presentationPhase(), Phase::folded);
}

TEST_F(PopoverPresentationTest, theFirstOpeningOfAnInstallationFillsTheRing) {
  store.values.erase("hasShownLaunchCeremony");
  fakes::publish(monitor.ringProgress, 0.6);
  appear();
  EXPECT_EQ(store.values["hasShownLaunchCeremony"], StoredValue(true));
  const double start = now();
  EXPECT_EQ(view->animatedState.get(), RingState::warming);
  EXPECT_EQ(view->ringProgress(start), 0.0);
  scheduler.runReady();
  EXPECT_NEAR(view->ringProgress(start + 0.8), 0.6 * 0.684643, 1e-5);
  EXPECT_EQ(view->ringProgress(start + 1.6), 0.6);
}

TEST_F(PopoverPresentationTest, anOlderInstallationShowsTheValueAtOnce) {
  fakes::publish(monitor.ringProgress, 0.6);
  appear();
  EXPECT_EQ(view->ringProgress(now()), 0.6);
  EXPECT_EQ(view->animatedState.get(), RingState::warming);
}

TEST_F(PopoverPresentationTest, theSecondOpeningHasNoCeremony) {
  store.values.erase("hasShownLaunchCeremony");
  open();
  dismiss();
  scheduler.advance(1.0);
  fakes::publish(monitor.ringProgress, 0.7);
  scheduler.advance(1.0);
  appear();
  EXPECT_EQ(view->ringProgress(now()), 0.7);
}

TEST_F(PopoverPresentationTest, aLaterOpeningShowsItsFreshSampleAtOnce) {
  open();
  dismiss();
  scheduler.advance(1.0);
  fakes::publish(monitor.ringProgress, 0.7);  // the sample of the opening, which is delivered after it
  appear();
  EXPECT_EQ(view->ringProgress(now()), 0.7);
  EXPECT_EQ(view->animatedState.get(), RingState::warming);
  scheduler.runReady();
  EXPECT_FALSE(view->animatedProgress.isMoving(now()));
  EXPECT_EQ(view->ringProgress(now() + 0.3), 0.7);
}

TEST_F(PopoverPresentationTest, anOpeningDuringAPolishLeavesTheRingToIt) {
  showRing(0.9);
  open();
  press();
  dismiss();
  goTo(8.0);  // the ring is held at zero
  fakes::publish(monitor.ringProgress, 0.7);
  appear();
  EXPECT_EQ(view->ringProgress(now()), 0.0);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
  scheduler.runReady();
  EXPECT_EQ(view->ringProgress(now() + 0.6), 0.0);
}

TEST_F(PopoverPresentationTest, theHaloBreathesFromTheFirstOpeningOn) {
  EXPECT_EQ(view->haloBreath(now() + 3.0), 0.0);
  appear();
  const double start = now();
  EXPECT_NEAR(view->haloBreath(start + 1.375), 0.129162, 1e-6);
  EXPECT_NEAR(view->haloBreath(start + 2.75), 0.5, 1e-6);
  EXPECT_NEAR(view->haloBreath(start + 5.5), 1.0, 1e-6);
  EXPECT_NEAR(view->haloBreath(start + 8.25), 0.5, 1e-6);
  EXPECT_NEAR(view->haloBreath(start + 11.0), 0.0, 1e-6);
  scheduler.advance(20.0);
  appear();
  EXPECT_NEAR(view->haloBreath(start + 27.5), 1.0, 1e-6);  // the same breath, five passes on
}

TEST_F(PopoverPresentationTest, theAuroraTurnsFromTheFirstOpeningOn) {
  EXPECT_EQ(view->aurora(now() + 4.5).warmCloud.rotationDegrees, 0.0);
  appear();
  const double start = now();
  EXPECT_NEAR(view->aurora(start + 4.5).warmCloud.rotationDegrees, 90.0, 1e-9);
  scheduler.advance(9.0);
  appear();
  EXPECT_NEAR(view->aurora(start + 13.5).warmCloud.rotationDegrees, 270.0, 1e-9);
}

TEST_F(PopoverPresentationTest, theAuroraHasTheRingsColourAndTheCalmDimsIt) {
  showRing(0.56);
  const Colour shown = view->stateColor(now());
  EXPECT_EQ(view->aurora(now()).warmCloud.gradient.stops[0].colour, shown.withAlpha(0.55));
  EXPECT_EQ(view->aurora(now()).warmCloud.opacity, 1.0);
  fakes::publish(clearState.calmIntensity, 1.0);
  EXPECT_DOUBLE_EQ(view->aurora(now()).warmCloud.opacity, 0.45);
}

TEST_F(PopoverPresentationTest, theHeightLeavesRoomForWhatIsShown) {
  EXPECT_EQ(view->desiredSize().height, 240.0);
  fakes::publish(view->postClearPercentage, 12);
  EXPECT_EQ(view->desiredSize().height, 264.0);
  fakes::publish(view->postClearSentence, breathingRoom);
  EXPECT_EQ(view->desiredSize().height, 304.0);
  fakes::publish(view->postClearPercentage, std::nullopt);
  EXPECT_EQ(view->desiredSize().height, 304.0);
  fakes::publish(view->postClearSentence, std::nullopt);
  hog("notes");
  EXPECT_EQ(view->desiredSize().height, 240.0);
  showRing(0.6);
  EXPECT_EQ(view->desiredSize().height, 304.0);
}

TEST_F(PopoverPresentationTest, aSentenceAboutTheHelperHasTheLinkAndItsHeight) {
  fakes::publish(view->postClearSentence, "A gentle tidy. Couldn't reach the helper for a full polish.");
  EXPECT_TRUE(view->showsOpenSettingsLink());
  EXPECT_EQ(view->desiredSize().height, 304.0);
}

TEST_F(PopoverPresentationTest, aChangeOfTheHeightIsReportedOnce) {
  open();
  fakes::publish(view->postClearSentence, breathingRoom);
  EXPECT_TRUE(heights.empty());
  scheduler.runReady();
  EXPECT_EQ(heights, std::vector{304.0});
  fakes::publish(view->postClearSentence, "A gentle tidy.");
  scheduler.runReady();
  EXPECT_EQ(heights.size(), 1u);
}

TEST_F(PopoverPresentationTest, aPressThatTradesTheCulpritsForASentenceKeepsTheHeight) {
  hog("notes");
  showRing(0.9);
  open();
  setHelperStatus(2);
  press();
  EXPECT_EQ(view->postClearSentence.get(), "A gentle tidy. Approve Vorli in Login Items for a full polish.");
  EXPECT_TRUE(heights.empty());
}

TEST_F(PopoverPresentationTest, aClosedPopoverComputesNothing) {
  open();
  dismiss();
  scheduler.advance(1.0);
  int changes = 0;
  const auto watching = view->subscribeToContent([&] { ++changes; });
  const auto looks = workspace.looksAtPaths.size();
  showRing(0.9);
  for (int i = 0; i < 10; ++i) {
    hogInFolder();
    scheduler.advance(15.0);
  }
  EXPECT_EQ(workspace.looksAtPaths.size(), looks);
  EXPECT_TRUE(heights.empty());
  EXPECT_EQ(changes, 0);
}

TEST_F(PopoverPresentationTest, culpritsAreNamedWhenTheMacIsNotHealthy) {
  hog("notes", 3);
  hog("browser", 5);
  EXPECT_TRUE(view->culpritSegments().empty());
  showRing(0.6);
  EXPECT_EQ(view->culpritSegments(),
            (std::vector<Segment>{{Segment::Kind::app, "Browser"},
                                  {Segment::Kind::text, " and "},
                                  {Segment::Kind::app, "Notes"},
                                  {Segment::Kind::text, " are using the most right now."}}));
  fakes::publish(view->isReleasing, true);
  EXPECT_TRUE(view->culpritSegments().empty());
  fakes::publish(view->isReleasing, false);
  EXPECT_FALSE(view->culpritSegments().empty());
  fakes::publish(view->postClearSentence, breathingRoom);
  EXPECT_TRUE(view->culpritSegments().empty());
}

TEST_F(PopoverPresentationTest, culpritsAreComputedOncePerChange) {
  hogInFolder();
  showRing(0.6);
  const auto looks = workspace.looksAtPaths.size();
  for (int i = 0; i < 5; ++i) static_cast<void>(view->culpritSegments());
  const auto once = workspace.looksAtPaths.size();
  view->setHovered(true);
  static_cast<void>(view->desiredSize());
  EXPECT_EQ(workspace.looksAtPaths.size(), once);
  EXPECT_GT(once, looks);
}

struct QuitConfirmationTest : PopoverPresentationTest {
  QuitConfirmationTest() {
    hog("notes");
    workspace.add(41, SharedText("Notes"), SharedText("org.notes"));
    showRing(0.9);
    open();
  }
};

TEST_F(QuitConfirmationTest, pressingANameAsks) {
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
  view->culpritNamePressed("Notes");
  EXPECT_EQ(view->confirmingQuitName().get(), "Notes");
  EXPECT_EQ(view->quitQuestion(), "Quit Notes?");
  EXPECT_EQ(view->quitConfirmation(now()), 0.0);
  EXPECT_NEAR(view->quitConfirmation(now() + 0.1), 0.684643, 1e-5);
  EXPECT_EQ(view->quitConfirmation(now() + 0.2), 1.0);
  EXPECT_TRUE(workspace.terminated.empty());
  scheduler.runReady();
  EXPECT_TRUE(heights.empty());
}

TEST_F(QuitConfirmationTest, confirmingAsksTheApplicationAndTakesAFreshSample) {
  const int samples = memory.statisticsReads;
  view->culpritNamePressed("Notes");
  view->quitConfirmed();
  EXPECT_EQ(workspace.terminated, std::vector<std::int32_t>{41});
  EXPECT_EQ(memory.statisticsReads, samples + 1);
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
}

TEST_F(QuitConfirmationTest, cancellingQuitsNothing) {
  const int samples = memory.statisticsReads;
  view->culpritNamePressed("Notes");
  view->quitCancelled();
  view->quitConfirmed();
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(memory.statisticsReads, samples);
}

std::string sentenceOf(const PopoverView& view) {
  std::string whole;
  for (const auto& segment : view.culpritSegments()) whole += segment.text;
  return whole;
}

TEST_F(QuitConfirmationTest, anApplicationThatCannotBeAskedMustBeClosedByHand) {
  workspace.refusing = {41};
  view->culpritNamePressed("Notes");
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
  EXPECT_EQ(sentenceOf(*view), "Notes has to be closed by hand on this desktop.");
  EXPECT_TRUE(workspace.terminated.empty());
  scheduler.runReady();
  EXPECT_TRUE(heights.empty());
  scheduler.advance(5.999);
  EXPECT_EQ(sentenceOf(*view), "Notes has to be closed by hand on this desktop.");
  scheduler.advance(0.001);
  EXPECT_EQ(sentenceOf(*view), "Notes is using the most right now.");
}

TEST_F(QuitConfirmationTest, aRefusalAfterTheConfirmationIsShown) {
  view->culpritNamePressed("Notes");
  EXPECT_EQ(view->quitQuestion(), "Quit Notes?");
  workspace.refusing = {41};
  view->quitConfirmed();
  hog("notes");  // it is still there in the fresh sample
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
  EXPECT_EQ(sentenceOf(*view), "Notes has to be closed by hand on this desktop.");
  dismiss();
  open();
  showRing(0.9);
  EXPECT_EQ(sentenceOf(*view), "Notes is using the most right now.");
}

TEST_F(QuitConfirmationTest, theQuestionDisappearsWithItsCulprits) {
  view->culpritNamePressed("Notes");
  fakes::publish(view->isReleasing, true);
  scheduler.runReady();
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
  fakes::publish(view->isReleasing, false);
  scheduler.runReady();
  EXPECT_EQ(view->quitQuestion(), std::nullopt);
}

TEST_F(PopoverPresentationTest, theLinkOpensTheLoginItemsAndTheGearTheSettings) {
  view->openSettingsLinkPressed();
  EXPECT_EQ(helperService.calls.back(), "open login items");
  view->gearPressed();
  int opened = 0;
  view->setGearHandler([&] { ++opened; });
  view->gearPressed();
  EXPECT_EQ(opened, 1);
}

TEST_F(PopoverPresentationTest, theDotsAnswerThePointerOnACalmRing) {
  open();
  view->setHovered(true);
  EXPECT_FALSE(view->reassuranceDots().isVisible());
  scheduler.runReady();
  EXPECT_TRUE(view->reassuranceDots().isVisible());
  view->setHovered(false);
  scheduler.runReady();
  EXPECT_FALSE(view->reassuranceDots().isVisible());
}

TEST_F(PopoverPresentationTest, theDotsOfTheLastOpeningAreNotSeenInTheNext) {
  open();
  view->setHovered(true);
  scheduler.advance(2.0);
  ASSERT_EQ(view->reassuranceDots().dots(now())[3].opacity, 0.88);
  dismiss();
  view->setHovered(false);  // as the painter sets it after the popover has closed
  scheduler.advance(2.0);
  appear();
  for (const auto& dot : view->reassuranceDots().dots(now())) EXPECT_EQ(dot.opacity, 0.0);
  EXPECT_EQ(view->reassuranceDots().scale(now()), 0.94);
  EXPECT_FALSE(view->reassuranceDots().isVisible());
}

TEST_F(PopoverPresentationTest, theStatesColourFollowsProgressHourAndCalm) {
  calendar.hour = 18;
  showRing(0.3);
  const Colour evening = view->stateColor(now());
  EXPECT_NEAR(evening.red, 0.43176, 1e-6);
  EXPECT_NEAR(evening.green, 0.708196, 1e-6);
  EXPECT_NEAR(evening.blue, 0.565964, 1e-6);
  fakes::publish(clearState.calmIntensity, 1.0);
  EXPECT_EQ(view->stateColor(now()), (Colour{0.423, 0.659, 0.643}));
}

TEST_F(PopoverPresentationTest, allChangesOfATurnAreReportedOnce) {
  open();
  int changes = 0;
  const auto watching = view->subscribeToContent([&] { ++changes; });
  view->setHovered(true);
  fakes::publish(view->postClearPercentage, 12);
  fakes::publish(view->postClearSentence, breathingRoom);
  EXPECT_EQ(changes, 0);
  scheduler.runReady();
  EXPECT_EQ(changes, 1);
}

TEST_F(PopoverPresentationTest, knowsWhenThereIsNothingToDraw) {
  EXPECT_EQ(view->motion(now()), PopoverMotion::none);
  appear();
  scheduler.runReady();
  EXPECT_EQ(view->motion(now()), PopoverMotion::full);
  scheduler.advance(0.15);
  EXPECT_EQ(view->motion(now()), PopoverMotion::breath);
  dismiss();
  EXPECT_EQ(view->motion(now()), PopoverMotion::full);
  EXPECT_EQ(view->motion(now() + 0.12), PopoverMotion::none);
  EXPECT_EQ(view->motion(now() + 1000.0), PopoverMotion::none);
}

TEST_F(PopoverPresentationTest, aPolishDrawsUntilItsLastMotionAndRestsWhileClosed) {
  showRing(0.9);
  open();
  press();
  goTo(3.3);
  EXPECT_EQ(view->motion(now()), PopoverMotion::full);
  goTo(4.1);  // the ring's bounce is over
  EXPECT_EQ(view->motion(now()), PopoverMotion::breath);
  dismiss();
  goTo(11.0);  // the ring rises, but nobody sees it
  EXPECT_TRUE(view->animatedProgress.isMoving(now()));
  EXPECT_EQ(view->motion(now()), PopoverMotion::none);
}

TEST_F(PopoverPresentationTest, reducedMotionKeepsTheStatesAndDropsTheMovement) {
  motion.setReduced(true);
  appear();
  scheduler.advance(3.0);
  EXPECT_EQ(view->haloBreath(now()), 0.0);
  EXPECT_EQ(view->movement(), Movement::dropped);
  EXPECT_EQ(view->motion(now()), PopoverMotion::none);
  fakes::publish(view->celebrationScale, 1.08);
  EXPECT_EQ(view->ringScale(now()), 1.0);
  showRing(0.9);
  press();
  EXPECT_FALSE(view->aurora(now() + 1.0).sparks);
  EXPECT_EQ(view->aurora(now() + 1.0).warmCloud.scale, 1.0);
  EXPECT_LT(view->aurora(now() + 1.0).warmCloud.opacity, 0.5);
  EXPECT_EQ(view->ringProgress(now() + 1.85), 0.0);
}

TEST_F(PopoverPresentationTest, reducedMotionTakesEffectWhileOpen) {
  open();
  int changes = 0;
  const auto watching = view->subscribeToContent([&] { ++changes; });
  motion.setReduced(true);
  scheduler.runReady();
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(view->motion(now()), PopoverMotion::none);
  // The calm still ends, and its colour with it.
  fakes::publish(clearState.calmIntensity, 0.5);
  EXPECT_EQ(view->motion(now()), PopoverMotion::breath);
}

}  // namespace
}  // namespace vorli

#include "popover/PopoverHost.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/PopoverWindow.h"
#include "tests/polish/PolishFixture.h"

namespace vorli {
namespace {

using Calls = std::vector<std::string>;

struct PopoverHostTest : PolishFixture {
  PopoverHostTest() {
    view.reset();  // the test sets sizes until it adds the view
    host.createPopover();
    host.observeContent();
    popover.calls.clear();
    dismissals = appearances = 0;
  }

  void open() {
    host.togglePopover();
    report(304.0);
    scheduler.runReady();
    popover.calls.clear();
    popover.motions.clear();
  }
  void report(double height) { notifications.post(VorliPopoverSize{270.0, height}); }
  bool isActive() const { return monitor.cadence() == MonitorCadence::active; }
  int samples() const { return memory.statisticsReads; }

  PopoverHost& host = services.popoverHost;
  int appearances = 0;
  int dismissals = 0;
  Subscription appearing = notifications.observe<VorliAnimateAppear>([this](const auto&) { ++appearances; });
  Subscription dismissing = notifications.observe<VorliAnimateDismiss>([this](const auto&) { ++dismissals; });
};

TEST_F(PopoverHostTest, isMadeWithASizeOfItsOwn) {
  EXPECT_EQ(popover.size, (ports::PopoverSize{270.0, 280.0}));
  EXPECT_FALSE(popover.shown);
}

TEST_F(PopoverHostTest, opensAsAStripThatUnfursToTheFirstReportedSize) {
  popover.size.width = 271.0;
  host.togglePopover();
  EXPECT_EQ(popover.calls, (Calls{"size 271x24", "show"}));
  EXPECT_TRUE(host.isUnfurlingNow());
  EXPECT_EQ(appearances, 1);

  report(240.0);
  EXPECT_TRUE(popover.motions.empty());  // in a task of its own
  scheduler.runReady();
  ASSERT_EQ(popover.motions.size(), 1u);
  EXPECT_EQ(popover.motions[0].size, (ports::PopoverSize{270.0, 240.0}));
  EXPECT_EQ(popover.motions[0].animation, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  EXPECT_FALSE(host.isUnfurlingNow());
}

TEST_F(PopoverHostTest, theUnfurlOvershootsALittle) {
  open();
  host.togglePopover();
  scheduler.advance(1.0);
  host.togglePopover();
  report(240.0);
  scheduler.runReady();
  const auto& unfurl = popover.motions.back().animation;
  EXPECT_NEAR(unfurl.progress(0.25 * 0.34), 0.775589, 1e-5);
  EXPECT_NEAR(unfurl.progress(0.75 * 0.34), 1.011094, 1e-5);
  EXPECT_EQ(unfurl.progress(0.34), 1.0);
}

TEST_F(PopoverHostTest, showingOpensAClosedPopover) {
  host.showPopover();
  EXPECT_TRUE(popover.shown);
  EXPECT_EQ(appearances, 1);
}

TEST_F(PopoverHostTest, showingAnOpenPopoverBringsItToTheFrontAndClosesNothing) {
  open();
  const int before = application.activations;
  host.showPopover();
  scheduler.advance(1.0);
  EXPECT_TRUE(popover.shown);
  EXPECT_EQ(dismissals, 0);
  EXPECT_EQ(appearances, 1);
  EXPECT_EQ(application.activations, before + 1);
}

TEST_F(PopoverHostTest, showingAPopoverThatRollsUpOpensItAgainOnceItHasClosed) {
  open();
  host.togglePopover();
  scheduler.advance(0.1);
  ASSERT_TRUE(host.isRollingUpNow());
  host.showPopover();
  EXPECT_EQ(appearances, 1);
  scheduler.advance(0.14);
  EXPECT_EQ(appearances, 2);
  EXPECT_TRUE(popover.shown);
  EXPECT_TRUE(isActive());
  scheduler.advance(10.0);
  EXPECT_TRUE(popover.shown);
}

TEST_F(PopoverHostTest, aClickOnTheIconCancelsReopeningAfterTheRollUp) {
  open();
  host.togglePopover();
  scheduler.advance(0.1);
  host.showPopover();
  host.togglePopover();
  scheduler.advance(10.0);
  EXPECT_FALSE(popover.shown);
  EXPECT_EQ(appearances, 1);
}

TEST_F(PopoverHostTest, withoutAReportedSizeItStaysAStrip) {
  host.togglePopover();
  scheduler.advance(10.0);
  EXPECT_EQ(popover.size.height, 24.0);
  EXPECT_TRUE(host.isUnfurlingNow());
  EXPECT_TRUE(popover.motions.empty());
}

TEST_F(PopoverHostTest, laterSizesAreChangesOfContent) {
  open();
  report(240.0);
  scheduler.runReady();
  ASSERT_EQ(popover.motions.size(), 1u);
  EXPECT_EQ(popover.motions[0].animation, Animation::standard(0.32));
  EXPECT_EQ(popover.size.height, 240.0);
}

TEST_F(PopoverHostTest, openingTakesAFreshSampleAndLooksMoreOften) {
  const int before = samples();
  host.togglePopover();
  EXPECT_EQ(samples(), before + 1);
  EXPECT_TRUE(isActive());
  scheduler.advance(2.0);
  EXPECT_EQ(samples(), before + 2);
}

TEST_F(PopoverHostTest, openingSamplesFirstThenShowsAndThenNotifiesTheContent) {
  std::vector<std::string> steps;
  const auto sampled = monitor.lastUpdate.subscribeToChanges([&](Date) {
    steps.push_back(isActive() ? "sample while active" : "sample while idle");
    steps.push_back("after " + std::to_string(popover.calls.size()) + " calls");
  });
  const auto told = notifications.observe<VorliAnimateAppear>([&](const auto&) {
    steps.push_back("appear after " + popover.calls.back());
    steps.push_back(host.isUnfurlingNow() ? "unfurling" : "not unfurling");
    steps.push_back(popover.isMonitored() ? "monitored" : "not monitored");
  });
  host.togglePopover();
  EXPECT_EQ(steps, (Calls{"sample while active", "after 0 calls", "appear after show", "unfurling",
                          "not monitored"}));
}

TEST_F(PopoverHostTest, aTimerThatRunsAtThePaceOfAnOpenPopoverIsNotStartedAnew) {
  monitor.setCadence(MonitorCadence::active);
  scheduler.advance(1.0);
  host.togglePopover();
  const int before = samples();
  scheduler.advance(0.999);
  EXPECT_EQ(samples(), before);
  scheduler.advance(0.002);
  EXPECT_EQ(samples(), before + 1);
}

TEST_F(PopoverHostTest, openingReadsTheHelpersStatus) {
  helperService.rawStatus = 2;
  host.togglePopover();
  EXPECT_TRUE(manager.status.get() == InstallStatus::Case::requiresApproval);
}

TEST_F(PopoverHostTest, theShownPopoverTakesTheKeyboard) {
  host.togglePopover();
  EXPECT_EQ(application.activations, 0);
  scheduler.runReady();
  EXPECT_EQ(application.activations, 1);
  EXPECT_EQ(popover.calls.back(), "key");
}

TEST_F(PopoverHostTest, closingRollsUpFirst) {
  open();
  const double start = scheduler.now();
  host.togglePopover();
  EXPECT_EQ(popover.calls, Calls{"performClose"});
  EXPECT_EQ(dismissals, 0);
  scheduler.runReady();
  EXPECT_EQ(dismissals, 1);
  EXPECT_TRUE(host.isRollingUpNow());
  ASSERT_EQ(popover.motions.size(), 1u);
  EXPECT_EQ(popover.motions[0].size, (ports::PopoverSize{270.0, 24.0}));
  EXPECT_EQ(popover.motions[0].animation, Animation::timingCurve({0.55, 0.0, 0.78, 0.12}, 0.22));
  EXPECT_TRUE(isActive());
  EXPECT_TRUE(popover.isMonitored());

  scheduler.advanceTo(start + 0.239);
  EXPECT_TRUE(popover.shown);
  scheduler.advanceTo(start + 0.2401);
  EXPECT_FALSE(popover.shown);
  EXPECT_FALSE(host.isRollingUpNow());
  EXPECT_FALSE(isActive());
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_EQ(popover.calls, (Calls{"performClose", "animate 270x24", "performClose", "closed"}));
}

TEST_F(PopoverHostTest, theStripThatRemainsIsAsWideAsThePopover) {
  open();
  popover.size.width = 271.0;
  host.togglePopover();
  scheduler.runReady();
  EXPECT_EQ(popover.motions.at(0).size, (ports::PopoverSize{271.0, 24.0}));
}

TEST_F(PopoverHostTest, aPopoverThatDisappearsDuringTheRollUpLeavesNothingBehind) {
  open();
  host.togglePopover();
  scheduler.advance(0.1);
  popover.shown = false;
  scheduler.advance(0.2);
  EXPECT_FALSE(host.isRollingUpNow());
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_FALSE(isActive());

  // The next opening unfurls, and rolls up before it closes.
  host.togglePopover();
  report(240.0);
  scheduler.runReady();
  EXPECT_EQ(popover.size.height, 240.0);
  host.togglePopover();
  EXPECT_TRUE(popover.shown);
}

TEST_F(PopoverHostTest, onlyOneCloseBypassesTheRollUp) {
  open();
  host.togglePopover();
  scheduler.advance(1.0);
  open();
  host.togglePopover();
  EXPECT_TRUE(popover.shown);
  scheduler.advance(1.0);
  EXPECT_FALSE(popover.shown);
}

TEST_F(PopoverHostTest, aCloseByTheWindowRollsUpToo) {
  open();
  popover.performClose();
  scheduler.advance(0.2);
  EXPECT_TRUE(popover.shown);
  EXPECT_TRUE(isActive());
  scheduler.advance(0.1);
  EXPECT_FALSE(popover.shown);
  EXPECT_FALSE(isActive());
}

TEST_F(PopoverHostTest, aPressOutsideClosesAndFallsIdleAtTheStartOfTheRollUp) {
  open();
  popover.pressOutside();
  EXPECT_FALSE(isActive());
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_TRUE(popover.shown);
  scheduler.advance(0.25);
  EXPECT_FALSE(popover.shown);
}

TEST_F(PopoverHostTest, aSecondPressOutsideIsIgnored) {
  open();
  popover.pressOutside();
  popover.pressOutside();
  scheduler.advance(1.0);
  EXPECT_EQ(dismissals, 1);
}

TEST_F(PopoverHostTest, theContentCanCloseThePopover) {
  open();
  notifications.post(VorliClosePopover{});
  EXPECT_TRUE(isActive());  // in a task of its own
  scheduler.runReady();
  EXPECT_FALSE(isActive());
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_TRUE(popover.shown);
  scheduler.advance(0.25);
  EXPECT_FALSE(popover.shown);
}

TEST_F(PopoverHostTest, nothingHappensWhenAClosedPopoverIsToClose) {
  monitor.setCadence(MonitorCadence::active);
  notifications.post(VorliClosePopover{});
  scheduler.advance(1.0);
  EXPECT_EQ(dismissals, 0);
  EXPECT_TRUE(popover.calls.empty());
  EXPECT_TRUE(isActive());
}

TEST_F(PopoverHostTest, aClickDuringTheRollUpRollsUpAgainAndThePopoverCloses) {
  open();
  host.togglePopover();
  scheduler.advance(0.1);
  host.togglePopover();
  scheduler.runReady();
  EXPECT_EQ(dismissals, 2);
  EXPECT_EQ(popover.motions.size(), 1u);  // it is already changing to that size
  scheduler.advance(0.15);
  EXPECT_FALSE(popover.shown);
  EXPECT_FALSE(host.isRollingUpNow());
  scheduler.advance(1.0);

  // The second roll-up leaves no state behind: the next close rolls up too.
  open();
  host.togglePopover();
  EXPECT_TRUE(popover.shown);
}

TEST_F(PopoverHostTest, aSecondRollUpDoesNotCloseWhatWasOpenedSince) {
  open();
  host.togglePopover();
  scheduler.advance(0.2);
  host.togglePopover();
  scheduler.advance(0.05);
  ASSERT_FALSE(popover.shown);
  open();
  scheduler.advance(1.0);
  EXPECT_TRUE(popover.shown);
  EXPECT_TRUE(isActive());
  EXPECT_TRUE(popover.isMonitored());
  EXPECT_FALSE(host.isRollingUpNow());
}

TEST_F(PopoverHostTest, aRollUpThatComesTooLateKeepsNoSizeFromTheNextOpening) {
  open();
  host.togglePopover();
  popover.shown = false;  // closed before the roll-up has its turn
  scheduler.runReady();
  EXPECT_FALSE(host.isRollingUpNow());
  host.togglePopover();
  report(240.0);
  scheduler.runReady();
  EXPECT_EQ(popover.size.height, 240.0);
}

TEST_F(PopoverHostTest, noSizePushesARollingPopoverOpen) {
  open();
  host.togglePopover();
  scheduler.runReady();
  report(304.0);
  scheduler.runReady();
  EXPECT_EQ(popover.motions.size(), 1u);
  EXPECT_EQ(popover.size.height, 24.0);
}

TEST_F(PopoverHostTest, withoutAPlaceNothingHappens) {
  popover.hasScreen = false;
  const int before = samples();
  host.togglePopover();
  EXPECT_EQ(samples(), before);
  EXPECT_EQ(popover.calls, Calls{});
  EXPECT_FALSE(host.isUnfurlingNow());
  EXPECT_FALSE(isActive());
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_EQ(appearances, 0);
}

TEST_F(PopoverHostTest, twoHundredOpeningsLeaveNothingBehind) {
  view.emplace(popoverServices());
  for (int i = 0; i < 200; ++i) {
    host.togglePopover();
    scheduler.advance(0.4);
    host.togglePopover();
    scheduler.advance(0.4);
  }
  EXPECT_FALSE(popover.shown);
  EXPECT_FALSE(popover.isMonitored());
  EXPECT_EQ(popover.monitors, 200);
  EXPECT_FALSE(isActive());
  EXPECT_EQ(view->motion(scheduler.now()), PopoverMotion::none);
  EXPECT_EQ(scheduler.pendingTimers(), 1u);  // the monitor's
}

TEST_F(PopoverHostTest, theSampleOfALaterOpeningIsInTheRingAtOnce) {
  store.setObject("hasShownLaunchCeremony", true);
  view.emplace(popoverServices());
  host.togglePopover();
  scheduler.advance(1.0);
  host.togglePopover();
  scheduler.advance(1.0);
  const double before = view->ringProgress(scheduler.now());
  setHeat(0);
  scheduler.advance(30.0);  // the ring has not yet followed the monitor's own ticks to the end when it opens
  host.togglePopover();
  const double opened = scheduler.now();
  EXPECT_LT(monitor.ringProgress.get(), before);
  EXPECT_EQ(view->ringProgress(opened), monitor.ringProgress.get());
  scheduler.runReady();
  EXPECT_EQ(view->ringProgress(opened + 0.3), monitor.ringProgress.get());
}

TEST_F(PopoverHostTest, theViewsReportUnfurlsThePopover) {
  view.emplace(popoverServices());
  host.togglePopover();
  scheduler.runReady();
  ASSERT_EQ(popover.motions.size(), 1u);
  EXPECT_EQ(popover.size, (ports::PopoverSize{270.0, 240.0}));
  EXPECT_EQ(popover.motions[0].animation.durationSeconds, 0.34);
}

TEST_F(PopoverHostTest, aPolishClosesThePopoverFiveSecondsAndTwoThirdsAfterItsDrainBegan) {
  view.emplace(popoverServices());
  host.togglePopover();
  scheduler.advance(1.0);
  press();
  goBefore(5.65);
  EXPECT_TRUE(isActive());
  goTo(5.66);
  EXPECT_FALSE(isActive());
  EXPECT_TRUE(host.isRollingUpNow());
  goTo(5.65 + 0.25);
  EXPECT_FALSE(popover.shown);
}

}  // namespace
}  // namespace vorli

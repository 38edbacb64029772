#include "nudges/NudgeNotifier.h"
#include "tests/fakes/UserNotificationCenter.h"
#include "tests/polish/PolishFixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct NudgeNotifierTest : PolishFixture {
  NudgeNotifierTest() {
    settings.gentleNudges.set(true);
    store.values["hasCompletedOnboarding"] = true;
  }

  fakes::UserNotificationCenter center{scheduler};
  std::optional<NudgeNotifier> notifier{std::in_place, needs()};

  NudgeNotifierNeeds needs(const NudgeTexts& texts = NudgeTexts::macOS) {
    return {scheduler, calendar, store, center, manager, settings, services.quietPolish, texts};
  }
  void evaluate(double progress) {
    notifier->evaluate(settings, progress);
    scheduler.runReady();
  }
  std::size_t postedFor(double progress) {
    const auto before = center.posted.size();
    evaluate(progress);
    return center.posted.size() - before;
  }
  void notifyHelperBroken() {
    notifier->notifyHelperBroken();
    scheduler.runReady();
  }
  void respond(std::string_view category, std::string_view action) {
    center.respond(category, action);
    scheduler.runReady();
  }
  bool said(LogLevel level, std::string_view text) const {
    return std::ranges::count(log.lines(), fakes::CapturedLog::Line{level, "nudge", std::string(text)}) == 1;
  }
};

TEST_F(NudgeNotifierTest, installsTheCategoriesWithTheirButtons) {
  using Categories = std::vector<ports::NotificationCategory>;
  EXPECT_EQ(center.categories, (Categories{{"VorliClearAction", {{"VorliClearNow", "Polish Now", 4}}},
                                           {"VorliHelperBrokenAction",
                                            {{"VorliReinstallHelper", "Reinstall", 4},
                                             {"VorliOpenLoginItems", "Open Settings", 4}}}}));
}

TEST_F(NudgeNotifierTest, theNudgeIsPassiveAndHasTheTextsAndAFreshIdentifier) {
  evaluate(0.95);
  ASSERT_EQ(center.posted.size(), 1u);
  const auto& nudge = center.posted[0];
  EXPECT_EQ(nudge.title, "Vorli");
  EXPECT_EQ(nudge.body, "Your Mac is feeling full. A quick polish should help.");
  EXPECT_EQ(nudge.interruptionLevel, ports::NotificationRequest::InterruptionLevel::passive);
  EXPECT_EQ(nudge.categoryIdentifier, "VorliClearAction");
  EXPECT_EQ(nudge.identifier.size(), 36u);
  EXPECT_TRUE(said(LogLevel::standard, "posted nudge with Polish Now action"));
}

TEST_F(NudgeNotifierTest, aLinuxDesktopReadsOfAComputer) {
  notifier.reset();
  notifier.emplace(needs(NudgeTexts::linuxDesktop));
  evaluate(0.95);
  notifyHelperBroken();
  EXPECT_EQ(center.posted[0].body, "Your computer is feeling full. A quick polish should help.");
  EXPECT_EQ(center.posted[1].body,
            "The background helper isn't responding. Press Reinstall to fix it, or Open Settings to see "
            "what it needs.");
}

TEST_F(NudgeNotifierTest, theEdgeIsAtNineTenths) {
  EXPECT_EQ(postedFor(0.8999999), 0u);
  EXPECT_EQ(postedFor(0.9), 1u);
}

TEST_F(NudgeNotifierTest, aRingThatStaysHighIsOneCrossing) {
  EXPECT_EQ(postedFor(0.95), 1u);
  for (int tick = 0; tick < 2000; ++tick) {
    scheduler.advance(15.0);
    EXPECT_EQ(postedFor(0.95), 0u);
  }
}

TEST_F(NudgeNotifierTest, aCrossingWithinTheCooldownIsUsedUp) {
  evaluate(0.95);
  evaluate(0.5);
  EXPECT_TRUE(said(LogLevel::standard, "dropped below threshold — armed for next crossing"));
  scheduler.advance(60.0);
  EXPECT_EQ(postedFor(0.95), 0u);
  EXPECT_TRUE(said(LogLevel::standard, "crossed 90% but within cooldown — skipping"));
  scheduler.advance(3600.0);
  EXPECT_EQ(postedFor(0.95), 0u);  // only the next fall arms it again
  EXPECT_EQ(postedFor(0.8999), 0u);
  EXPECT_EQ(postedFor(0.9), 1u);
}

TEST_F(NudgeNotifierTest, theCooldownEndsWithThe1800thSecond) {
  evaluate(0.95);
  evaluate(0.5);
  scheduler.advance(1799.0);
  EXPECT_EQ(postedFor(0.95), 0u);
  evaluate(0.5);
  scheduler.advance(1.0);
  EXPECT_EQ(postedFor(0.95), 1u);
}

TEST_F(NudgeNotifierTest, aLowRingSaysNothing) {
  evaluate(0.5);
  evaluate(0.6);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(NudgeNotifierTest, aFailedPostStartsTheCooldownToo) {
  center.postResult = std::unexpected("nobody listens");
  evaluate(0.95);
  EXPECT_TRUE(said(LogLevel::error, "post failed: nobody listens"));
  evaluate(0.5);
  scheduler.advance(1799.0);
  EXPECT_EQ(postedFor(0.95), 0u);
}

TEST_F(NudgeNotifierTest, aRestartForgetsTheCooldown) {
  evaluate(0.95);
  notifier.reset();
  notifier.emplace(needs());
  EXPECT_EQ(postedFor(0.95), 1u);
}

TEST_F(NudgeNotifierTest, noCrossingIsNoticedWhileSwitchedOff) {
  settings.gentleNudges.set(false);
  EXPECT_EQ(postedFor(0.95), 0u);
  settings.gentleNudges.set(true);
  EXPECT_EQ(postedFor(0.95), 1u);  // the ring was high when the setting was switched on
  settings.gentleNudges.set(false);
  evaluate(0.5);  // and no fall
  settings.gentleNudges.set(true);
  scheduler.advance(1800.0);
  EXPECT_EQ(postedFor(0.95), 0u);
}

TEST_F(NudgeNotifierTest, automaticPolishesLeaveNothingToNudgeAbout) {
  settings.autoClear.set(true);
  EXPECT_EQ(postedFor(0.95), 0u);
  settings.autoClear.set(false);
  EXPECT_EQ(postedFor(0.95), 1u);
}

TEST_F(NudgeNotifierTest, stayingQuietDuringFocusIsTheSystemsAffair) {
  settings.quietDuringFocus.set(true);
  EXPECT_EQ(postedFor(0.95), 1u);
  evaluate(0.5);
  scheduler.advance(1800.0);
  settings.quietDuringFocus.set(false);
  EXPECT_EQ(postedFor(0.95), 1u);
  EXPECT_EQ(center.posted[0].interruptionLevel, center.posted[1].interruptionLevel);
}

TEST_F(NudgeNotifierTest, aBrokenHelperIsReported) {
  notifyHelperBroken();
  ASSERT_EQ(center.posted.size(), 1u);
  const auto& notice = center.posted[0];
  EXPECT_EQ(notice.title, "Vorli needs your attention");
  EXPECT_EQ(notice.body,
            "The background helper isn't responding. Tap Reinstall to fix it, or Open Settings and approve "
            "Vorli under Allow in the Background.");
  EXPECT_EQ(notice.categoryIdentifier, "VorliHelperBrokenAction");
  EXPECT_EQ(notice.interruptionLevel, ports::NotificationRequest::InterruptionLevel::passive);
  EXPECT_TRUE(notice.identifier.starts_with("vorli.helperBroken."));
  EXPECT_EQ(notice.identifier.size(), 19u + 36u);
  EXPECT_TRUE(said(LogLevel::standard, "posted helper-broken notification with Open Settings action"));
  EXPECT_EQ(store.values.at("vorli.helperBroken.lastNotifiedAt"), StoredValue(calendar.now()));
}

TEST_F(NudgeNotifierTest, aBrokenHelperIsNotReportedDuringSetup) {
  store.values.erase("hasCompletedOnboarding");
  notifyHelperBroken();
  EXPECT_TRUE(center.posted.empty());
  EXPECT_TRUE(said(LogLevel::debug, "helper-broken notification skipped: onboarding not complete"));
}

TEST_F(NudgeNotifierTest, aBrokenHelperIsReportedOnceADayAcrossLaunches) {
  notifyHelperBroken();
  scheduler.advance(86399.5);
  notifier.reset();
  notifier.emplace(needs());
  notifyHelperBroken();
  EXPECT_EQ(center.posted.size(), 1u);
  EXPECT_TRUE(said(LogLevel::debug, "helper-broken notification skipped: within 24h cooldown (86399s)"));
  scheduler.advance(0.5);
  notifyHelperBroken();
  EXPECT_EQ(center.posted.size(), 2u);
}

TEST_F(NudgeNotifierTest, aMalformedDateDoesNotHoldANoticeBack) {
  store.values["vorli.helperBroken.lastNotifiedAt"] = std::string("yesterday");
  notifyHelperBroken();
  EXPECT_EQ(center.posted.size(), 1u);
}

TEST_F(NudgeNotifierTest, aFailedReportOfABrokenHelperIsTriedAgain) {
  center.postResult = std::unexpected("nobody listens");
  notifyHelperBroken();
  EXPECT_TRUE(said(LogLevel::error, "helper-broken notification post failed: nobody listens"));
  EXPECT_FALSE(store.values.contains("vorli.helperBroken.lastNotifiedAt"));
  center.postResult = {};
  notifyHelperBroken();
  EXPECT_EQ(center.posted.size(), 2u);
}

TEST_F(NudgeNotifierTest, repliesAfterItsEndAreDropped) {
  center.replySeconds = 5.0;
  notifier->notifyHelperBroken();
  notifier->requestAuthorization();
  center.authorization = {.granted = false, .error = std::nullopt};
  notifier->requestAuthorization();
  notifier.reset();
  EXPECT_EQ(center.delegate, nullptr);
  scheduler.advance(5.0);
  EXPECT_FALSE(store.values.contains("vorli.helperBroken.lastNotifiedAt"));
  EXPECT_TRUE(settings.gentleNudges());
}

TEST_F(NudgeNotifierTest, asksForAlertsAndSound) {
  notifier->requestAuthorization();
  scheduler.runReady();
  EXPECT_EQ(center.authorizationOptions, std::vector<std::uint32_t>{6});
  EXPECT_TRUE(said(LogLevel::standard, "auth granted=true"));
  EXPECT_TRUE(settings.gentleNudges());
}

TEST_F(NudgeNotifierTest, aRefusalSwitchesTheSettingOff) {
  center.authorization = {.granted = false, .error = std::nullopt};
  notifier->requestAuthorization();
  scheduler.runReady();
  EXPECT_TRUE(said(LogLevel::standard, "auth granted=false"));
  EXPECT_FALSE(settings.gentleNudges());
}

TEST_F(NudgeNotifierTest, anErrorIsARefusalWhenNothingWasGranted) {
  notifier->handleAuthorization(true, "half a failure");
  EXPECT_TRUE(said(LogLevel::error, "auth error: half a failure"));
  EXPECT_TRUE(settings.gentleNudges());
  notifier->handleAuthorization(false, "a failure");
  EXPECT_TRUE(said(LogLevel::error, "auth error: a failure"));
  EXPECT_FALSE(settings.gentleNudges());
}

TEST_F(NudgeNotifierTest, noticesShowAlsoOverTheProgramItself) {
  EXPECT_EQ(notifier->presentationOptions(), 18u);
}

TEST_F(NudgeNotifierTest, theButtonAndThePlainClickPolish) {
  for (const auto action : {NudgeNotifier::actionID, ports::notificationDefaultActionIdentifier}) {
    transport.requests.clear();
    const int reads = memory.statisticsReads;
    respond("VorliClearAction", action);
    EXPECT_EQ(transport.requests, (Strings{"flushDNS", "purgeMemory"}));
    EXPECT_EQ(memory.statisticsReads, reads + 1);
  }
  EXPECT_EQ(tap.windows, (std::vector{0.15, 0.15}));
  EXPECT_EQ(center.completions, 2);
}

TEST_F(NudgeNotifierTest, theCompletionComesAtTheEndOfTheWork) {
  transport.purgeMemory.delaySeconds = 2.0;
  respond("VorliClearAction", "VorliClearNow");
  scheduler.advance(1.9);
  EXPECT_EQ(center.completions, 0);
  scheduler.advance(0.2);
  EXPECT_EQ(center.completions, 1);
}

TEST_F(NudgeNotifierTest, playingSoundSparesThePurgeOfANotice) {
  tap.play({0.5F});
  respond("VorliClearAction", "VorliClearNow");
  EXPECT_EQ(transport.requests, Strings{"flushDNS"});
}

TEST_F(NudgeNotifierTest, aNoticesPolishWithoutTheHelperDoesNothing) {
  setHelperStatus(2);
  transport.requests.clear();
  helperService.calls.clear();
  respond("VorliClearAction", "VorliClearNow");
  EXPECT_EQ(transport.requests, Strings{});
  EXPECT_EQ(helperService.calls, Strings{});
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(center.completions, 1);
}

TEST_F(NudgeNotifierTest, dismissingANudgeDoesNothing) {
  respond("VorliClearAction", "dismiss");
  EXPECT_EQ(transport.requests, Strings{});
  EXPECT_EQ(center.completions, 1);
}

TEST_F(NudgeNotifierTest, anUnknownCategoryPolishesToo) {
  respond("", "VorliClearNow");
  EXPECT_EQ(transport.requests, (Strings{"flushDNS", "purgeMemory"}));
}

TEST_F(NudgeNotifierTest, reinstallForcesTheRepairAsTheUsersOwnWish) {
  respond("VorliHelperBrokenAction", "VorliReinstallHelper");
  scheduler.advance(30.0);
  EXPECT_EQ(log.count("Forced helper reinstall requested"), 1);
  EXPECT_EQ(std::ranges::count(helperService.calls, "register"), 1);
  EXPECT_EQ(std::ranges::count(helperService.calls, "register (program)"), 0);
  EXPECT_EQ(center.completions, 1);
}

TEST_F(NudgeNotifierTest, anythingElseOnTheHelperNoticeOpensTheLoginItems) {
  for (const std::string_view action :
       {NudgeNotifier::helperBrokenActionID, ports::notificationDefaultActionIdentifier,
        std::string_view("VorliClearNow")}) {
    helperService.calls.clear();
    respond("VorliHelperBrokenAction", action);
    EXPECT_EQ(helperService.calls, Strings{"open login items"});
  }
  EXPECT_EQ(transport.purgeMemory.requests, 0);
  EXPECT_EQ(center.completions, 3);
}

TEST(NudgeTextsTest, aLinuxDesktopHasNoMacInIt) {
  const auto& texts = NudgeTexts::linuxDesktop;
  for (const auto text : {texts.nudgeTitle, texts.nudgeBody, texts.polishNow, texts.helperBrokenTitle,
                          texts.helperBrokenBody, texts.reinstall, texts.openSettings}) {
    EXPECT_FALSE(text.empty());
    for (const std::string_view word : {"Mac", "System Settings", "Login Items", "Allow in the Background"})
      EXPECT_EQ(text.find(word), std::string_view::npos) << text;
  }
}

}  // namespace
}  // namespace vorli

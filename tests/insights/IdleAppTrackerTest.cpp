#include "insights/IdleAppTracker.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Workspace.h"

#include <limits>
#include <memory>

namespace vorli {
namespace {

using ports::ActivationPolicy;
using ports::ApplicationEvent;

constexpr const char* key = "bundleLastActivation";
constexpr double minute = 60.0;
const Date start{1'000'000.0};

struct IdleAppTrackerTest : testing::Test {
  IdleAppTracker& startTracker() {
    tracker = std::make_unique<IdleAppTracker>(scheduler, calendar, defaults, workspace);
    return *tracker;
  }

  ports::RunningApplication& add(std::int32_t pid, const char* name) {
    return workspace.add(pid, SharedText(name), SharedText("org.example." + std::string(name)));
  }

  void activate(std::int32_t pid) {
    workspace.tell(ApplicationEvent::activated, *workspace.withProcessIdentifier(pid));
  }

  std::vector<std::int32_t> idlePIDs(std::int64_t thresholdMinutes) {
    std::vector<std::int32_t> pids;
    for (const auto& row : tracker->idleApps(thresholdMinutes)) pids.push_back(row.pid);
    return pids;
  }

  const StoredDictionary& stored() { return std::get<StoredDictionary>(defaults.values.at(key)); }

  fakes::CapturedLog log;
  fakes::ManualScheduler scheduler;
  fakes::CalendarClock calendar{scheduler, start};
  fakes::KeyValueStore defaults;
  fakes::Workspace workspace;
  std::unique_ptr<IdleAppTracker> tracker;
};

using PIDs = std::vector<std::int32_t>;

TEST_F(IdleAppTrackerTest, startsWithAnEmptyMapAndWritesNothing) {
  startTracker();
  scheduler.advance(1000.0);
  EXPECT_TRUE(tracker->activationMap->empty());
  EXPECT_TRUE(defaults.writes.empty());
  EXPECT_EQ(tracker->idleApps(0), std::vector<IdleApp>());
}

TEST_F(IdleAppTrackerTest, loadsDatesAndNumbersAndDropsTheRestOneByOne) {
  defaults.values[key] = StoredDictionary{
      {"date", Date{1'600'000'000.5}},
      {"whole", std::int64_t{1'700'000'000}},
      {"real", 1'700'000'000.25},
      {"text", std::string("1700000000")},
      {"flag", true},
      {"noNumber", std::numeric_limits<double>::quiet_NaN()},
      {"endless", std::numeric_limits<double>::infinity()},
  };
  startTracker();
  EXPECT_EQ(tracker->activationMap.get(), (IdleAppTracker::ActivationMap{{"date", Date{1'600'000'000.5}},
                                                                         {"whole", Date{1'700'000'000.0}},
                                                                         {"real", Date{1'700'000'000.25}}}));
  EXPECT_TRUE(defaults.writes.empty());
}

TEST_F(IdleAppTrackerTest, aNumberIsStoredAsADateByTheNextSave) {
  defaults.values[key] = StoredDictionary{{"org.example.old", std::int64_t{1'700'000'000}}};
  add(1, "mail");
  startTracker();
  scheduler.advance(30.0);
  EXPECT_EQ(stored(),
            (StoredDictionary{{"org.example.old", Date{1'700'000'000.0}}, {"org.example.mail", start}}));
}

TEST_F(IdleAppTrackerTest, aValueThatIsNoDictionaryLoadsAsNothing) {
  for (const StoredValue& value :
       {StoredValue(std::int64_t{5}), StoredValue(start), StoredValue(std::string("com.example"))}) {
    defaults.values[key] = value;
    EXPECT_TRUE(startTracker().activationMap->empty());
  }
}

TEST_F(IdleAppTrackerTest, applicationsRunningAtTheStartCountAsActiveNowUnlessTheyAreKnown) {
  defaults.values[key] = StoredDictionary{{"org.example.mail", Date{5.0}}};
  add(1, "mail");
  add(2, "notes").launchDate = Date{7.0};
  workspace.add(3, SharedText("Nameless"));
  add(4, "tray").activationPolicy = ActivationPolicy::accessory;
  startTracker();
  EXPECT_EQ(tracker->activationMap.get(),
            (IdleAppTracker::ActivationMap{
                {"org.example.mail", Date{5.0}}, {"org.example.notes", start}, {"org.example.tray", start}}));
  scheduler.advance(30.0);
  EXPECT_EQ(defaults.writes, std::vector<std::string>{key});
}

TEST_F(IdleAppTrackerTest, aStartThatAddsNothingWritesNothing) {
  defaults.values[key] = StoredDictionary{{"org.example.mail", Date{5.0}}};
  add(1, "mail");
  startTracker();
  scheduler.advance(1000.0);
  EXPECT_TRUE(defaults.writes.empty());
}

TEST_F(IdleAppTrackerTest, activationsAndLaunchesAreRecorded) {
  startTracker();
  add(1, "mail");
  add(2, "notes");
  scheduler.advance(5.0);
  workspace.tell(ApplicationEvent::launched, workspace.applications[0]);
  scheduler.advance(5.0);
  activate(2);
  workspace.tell(ApplicationEvent::terminated, workspace.applications[0]);
  workspace.tell(ApplicationEvent::activated, {.processIdentifier = 9});
  EXPECT_EQ(tracker->activationMap.get(),
            (IdleAppTracker::ActivationMap{{"org.example.mail", Date{1'000'005.0}},
                                           {"org.example.notes", Date{1'000'010.0}}}));
  activate(1);
  EXPECT_EQ(tracker->activationMap->at("org.example.mail"), Date{1'000'010.0});
}

TEST_F(IdleAppTrackerTest, aBurstIsSavedOnceThirtySecondsAfterItsLastEvent) {
  startTracker();
  add(1, "mail");
  activate(1);
  scheduler.advance(20.0);
  activate(1);
  scheduler.advance(29.999);
  EXPECT_TRUE(defaults.writes.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(defaults.writes, std::vector<std::string>{key});
  EXPECT_EQ(stored(), (StoredDictionary{{"org.example.mail", Date{1'000'020.0}}}));
  scheduler.advance(1000.0);
  EXPECT_EQ(defaults.writes.size(), 1u);
  activate(1);
  scheduler.advance(30.0);
  EXPECT_EQ(defaults.writes.size(), 2u);
}

TEST_F(IdleAppTrackerTest, theLastThirtySecondsBeforeTheEndAreNotSaved) {
  startTracker();
  add(1, "mail");
  activate(1);
  scheduler.advance(29.999);
  tracker.reset();
  scheduler.advance(1000.0);
  EXPECT_TRUE(defaults.writes.empty());
  EXPECT_FALSE(workspace.hasSubscribers(ApplicationEvent::activated));
  EXPECT_FALSE(workspace.hasSubscribers(ApplicationEvent::launched));
}

StoredDictionary entries(int count) {
  StoredDictionary dictionary;
  for (int i = 0; i < count; ++i) {
    dictionary["old." + std::to_string(i)] = Date{static_cast<double>((i * 7919) % count)};
  }
  return dictionary;
}

TEST_F(IdleAppTrackerTest, twoHundredEntriesStay) {
  defaults.values[key] = entries(199);
  startTracker();
  add(1, "mail");
  activate(1);
  EXPECT_EQ(tracker->activationMap->size(), 200u);
  activate(1);
  EXPECT_EQ(tracker->activationMap->size(), 200u);
  EXPECT_TRUE(tracker->activationMap->contains("old.0"));  // the oldest
}

TEST_F(IdleAppTrackerTest, theOldestOfMoreThanTwoHundredEntriesAreDropped) {
  defaults.values[key] = entries(200);
  startTracker();
  add(1, "mail");
  activate(1);
  EXPECT_EQ(tracker->activationMap->size(), 200u);
  EXPECT_FALSE(tracker->activationMap->contains("old.0"));
  EXPECT_TRUE(tracker->activationMap->contains("org.example.mail"));

  defaults.values[key] = entries(250);
  startTracker();  // has 250 and adds the running one
  EXPECT_EQ(tracker->activationMap->size(), 200u);
  for (const auto& [identifier, date] : tracker->activationMap.get())
    EXPECT_GE(date, Date{51.0}) << identifier;
}

TEST_F(IdleAppTrackerTest, tooManyStoredEntriesStayUntilTheNextEvent) {
  defaults.values[key] = entries(201);
  startTracker();
  EXPECT_EQ(tracker->activationMap->size(), 201u);
  add(1, "mail");
  activate(1);
  EXPECT_EQ(tracker->activationMap->size(), 200u);
}

TEST_F(IdleAppTrackerTest, anActivationAtTheCutoffIsNotIdle) {
  add(1, "mail");
  startTracker();
  scheduler.advance(30 * minute);
  EXPECT_EQ(idlePIDs(30), PIDs{});
  calendar.advance(0.001);
  EXPECT_EQ(idlePIDs(30), PIDs{1});
}

TEST_F(IdleAppTrackerTest, aRowDescribesItsApplication) {
  auto& mail = add(1, "mail");
  mail.icon = {SharedText("mail-icon")};
  startTracker();
  scheduler.advance(31 * minute);
  EXPECT_EQ(tracker->idleApps(30),
            (std::vector<IdleApp>{{.id = 1,
                                   .pid = 1,
                                   .bundleIdentifier = SharedText("org.example.mail"),
                                   .displayName = SharedText("mail"),
                                   .icon = ports::ApplicationIcon{SharedText("mail-icon")},
                                   .lastActivated = start,
                                   .idleFor = 1860.0}}));
  workspace.applications[0].localizedName.reset();
  workspace.applications[0].icon = {};
  const auto row = tracker->idleApps(30).at(0);
  EXPECT_EQ(row.displayName, "org.example.mail");
  EXPECT_FALSE(row.icon.has_value());
}

TEST_F(IdleAppTrackerTest, anApplicationThatNobodySawStartCountsFromItsLaunch) {
  startTracker();
  add(1, "launched").launchDate = Date{999'000.0};
  add(2, "unknown");
  const auto rows = tracker->idleApps(10);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0].pid, 2);
  EXPECT_EQ(rows[0].lastActivated, Date::distantPast());
  EXPECT_GT(rows[0].idleFor, 62'000'000'000.0);
  EXPECT_EQ(rows[1].pid, 1);
  EXPECT_EQ(rows[1].idleFor, 1000.0);
}

TEST_F(IdleAppTrackerTest, theMapCountsBeforeTheLaunchDate) {
  auto& mail = add(1, "mail");
  mail.launchDate = Date{5.0};
  startTracker();
  EXPECT_EQ(idlePIDs(1), PIDs{});
}

TEST_F(IdleAppTrackerTest, theFrontmostBackgroundAndNamelessApplicationsAreNeverIdle) {
  startTracker();
  add(1, "front");
  add(2, "front");  // a second one of the same application
  add(3, "tray").activationPolicy = ActivationPolicy::accessory;
  add(4, "agent").activationPolicy = ActivationPolicy::prohibited;
  workspace.add(5, SharedText("Nameless"));
  workspace.add(6, SharedText("Vorli"), SharedText("com.kv.vorli"));
  add(7, "mail");
  workspace.frontmost = workspace.applications[0];
  EXPECT_EQ(idlePIDs(0), PIDs{7});

  workspace.frontmost.reset();
  EXPECT_EQ(idlePIDs(0), (PIDs{1, 2, 7}));
  workspace.frontmost = ports::RunningApplication{.processIdentifier = 7};
  EXPECT_EQ(idlePIDs(0), (PIDs{1, 2, 7}));
}

TEST_F(IdleAppTrackerTest, aThresholdOfZeroListsAllThatAreOlderThanNow) {
  add(1, "mail");
  startTracker();
  EXPECT_EQ(idlePIDs(0), PIDs{});
  scheduler.advance(0.001);
  EXPECT_EQ(idlePIDs(0), PIDs{1});
}

TEST_F(IdleAppTrackerTest, theLongestIdleComesFirstAndEqualsKeepTheirOrder) {
  defaults.values[key] = StoredDictionary{{"org.example.a", Date{500.0}},
                                          {"org.example.b", Date{100.0}},
                                          {"org.example.c", Date{500.0}},
                                          {"org.example.d", Date{900.0}}};
  add(1, "d");
  add(2, "c");
  add(3, "a");
  add(4, "b");
  startTracker();
  EXPECT_EQ(idlePIDs(60), (PIDs{4, 2, 3, 1}));

  workspace.applications.clear();
  PIDs expected;
  for (std::int32_t pid = 100; pid > 0; --pid) {
    add(pid, "a");
    expected.push_back(pid);
  }
  EXPECT_EQ(idlePIDs(60), expected);
}

TEST_F(IdleAppTrackerTest, whereWindowsCannotBeSeenNothingIsIdle) {
  startTracker();
  add(1, "mail");
  workspace.tellsActivations = false;
  EXPECT_EQ(idlePIDs(0), PIDs{});
  EXPECT_EQ(idlePIDs(0), PIDs{});
  EXPECT_EQ(log.count("windows cannot be seen here, no application counts as idle"), 1);
  workspace.tellsActivations = true;
  EXPECT_EQ(idlePIDs(0), PIDs{1});
  EXPECT_EQ(workspace.windowLooks, 0);  // each check costs a round trip to the display
}

}  // namespace
}  // namespace vorli

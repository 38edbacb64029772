#include "insights/ProcessEnumerator.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/Workspace.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace vorli {
namespace {

constexpr std::uint64_t second = 1'000'000'000;

struct ProcessEnumeratorTest : testing::Test {
  const std::vector<ProcessSnapshot>& pass(double secondsLater = 1.0) {
    if (!enumerator) enumerator = std::make_unique<ProcessEnumerator>(table, workspace, processors, calendar);
    calendar.advance(secondsLater);
    return enumerator->enumerate();
  }

  std::vector<std::int32_t> passPIDs() {
    std::vector<std::int32_t> result;
    for (const auto& row : pass()) result.push_back(row.id);
    return result;
  }

  /// The only row of another pass.
  ProcessSnapshot onlyRow() {
    const auto& rows = pass();
    EXPECT_EQ(rows.size(), 1u);
    return rows.empty() ? ProcessSnapshot() : rows.front();
  }

  void addBusy(std::int32_t pid, std::uint64_t user, std::uint64_t system = 0) {
    table.add(pid).taskInfo = ports::ProcessTaskInfo{1000, user, system};
  }

  fakes::ProcessTable table;
  fakes::Workspace workspace;
  fakes::CPUCounters processors;
  fakes::CalendarClock calendar;
  std::unique_ptr<ProcessEnumerator> enumerator;
};

TEST_F(ProcessEnumeratorTest, aRowHoldsWhatTheTableSaysOfTheProcess) {
  auto& process = table.add(42, "worker");
  process.bsdInfo->parentPID = 7;
  process.bsdInfo->startSeconds = 999'001;
  process.taskInfo = ports::ProcessTaskInfo{123456, 0, 0};
  process.executablePath = SharedText("/usr/bin/worker");
  calendar.set(Date{1'000'000.5});

  const auto row = onlyRow();
  EXPECT_EQ(row.id, 42);
  EXPECT_EQ(row.parentPID, 7);
  EXPECT_EQ(row.name, "worker");
  EXPECT_EQ(row.displayName, "worker");
  EXPECT_EQ(row.executablePath, SharedText("/usr/bin/worker"));
  EXPECT_FALSE(row.bundleIdentifier.has_value());
  EXPECT_EQ(row.residentBytes, 123456u);
  EXPECT_EQ(row.cpuFraction, 0.0);
  EXPECT_EQ(row.uptime, 1000.5);
  EXPECT_FALSE(row.activationPolicy.has_value());
  EXPECT_FALSE(row.appIcon.has_value());
}

TEST_F(ProcessEnumeratorTest, anApplicationsRecordFillsItsRow) {
  table.add(42, "worker");
  auto& application = workspace.add(42, SharedText("Worker Deluxe"), SharedText("org.example.worker"));
  application.activationPolicy = ports::ActivationPolicy::accessory;
  application.icon = {SharedText("worker-icon")};

  const auto row = onlyRow();
  EXPECT_EQ(row.name, "worker");
  EXPECT_EQ(row.displayName, "Worker Deluxe");
  EXPECT_EQ(row.bundleIdentifier, SharedText("org.example.worker"));
  EXPECT_EQ(row.activationPolicy, ports::ActivationPolicy::accessory);
  EXPECT_EQ(row.appIcon, ports::ApplicationIcon{SharedText("worker-icon")});
}

TEST_F(ProcessEnumeratorTest, anApplicationWithoutANameShowsTheShortName) {
  table.add(42, "worker");
  workspace.add(42, std::nullopt);
  const auto row = onlyRow();
  EXPECT_EQ(row.displayName, "worker");
  EXPECT_FALSE(row.bundleIdentifier.has_value());
  EXPECT_EQ(row.activationPolicy, ports::ActivationPolicy::regular);
}

TEST_F(ProcessEnumeratorTest, applicationsWithoutAProcessIdentifierAreIgnored) {
  table.add(42, "worker");
  workspace.add(0, SharedText("Zero"));
  workspace.add(-1, SharedText("Minus"));
  EXPECT_EQ(onlyRow().displayName, "worker");
}

TEST_F(ProcessEnumeratorTest, aRowKeepsNothingOfTheProcessThatHadItsPlace) {
  table.add(1, "first").executablePath = SharedText("/bin/first");
  workspace.add(1, SharedText("The First"), SharedText("org.example.first"));
  pass();
  table.remove(1);
  workspace.applications.clear();
  table.add(2, "second");

  const auto row = onlyRow();
  EXPECT_EQ(row.id, 2);
  EXPECT_EQ(row.displayName, "second");
  EXPECT_FALSE(row.executablePath.has_value());
  EXPECT_FALSE(row.bundleIdentifier.has_value());
  EXPECT_FALSE(row.activationPolicy.has_value());
  EXPECT_FALSE(row.appIcon.has_value());
}

TEST_F(ProcessEnumeratorTest, rowsComeInTheOrderOfTheListing) {
  for (const std::int32_t pid : {30, 10, 20}) table.add(pid);
  EXPECT_EQ(passPIDs(), (std::vector<std::int32_t>{30, 10, 20}));
}

TEST_F(ProcessEnumeratorTest, pidsUnderOneGiveNoRow) {
  for (const std::int32_t pid : {0, 5, -1, 6, -7}) table.add(pid);
  EXPECT_EQ(passPIDs(), (std::vector<std::int32_t>{5, 6}));
}

TEST_F(ProcessEnumeratorTest, aProcessThatCannotBeReadDropsOut) {
  table.add(1).taskInfo.reset();
  table.add(2).bsdInfo.reset();
  table.add(3);
  EXPECT_EQ(passPIDs(), std::vector<std::int32_t>{3});
}

TEST_F(ProcessEnumeratorTest, theListingKeepsAQuarterOfWhatTheSecondCallReturned) {
  for (std::int32_t pid = 1; pid <= 8; ++pid) table.add(pid);
  const std::pair<int, std::size_t> cases[] = {{32, 8}, {31, 7}, {8, 2}, {7, 1},  {4, 1},
                                               {3, 0},  {1, 0},  {0, 0}, {-1, 0}, {400, 8}};
  for (const auto& [bytes, kept] : cases) {
    table.bytesWritten = bytes;
    EXPECT_EQ(pass().size(), kept) << bytes;
  }
}

TEST_F(ProcessEnumeratorTest, theBufferHasTheSlotsOfTheFirstCall) {
  for (std::int32_t pid = 1; pid <= 8; ++pid) table.add(pid);
  table.slotCount = 3;
  EXPECT_EQ(passPIDs(), (std::vector<std::int32_t>{1, 2, 3}));
  table.slotCount = 20;  // slots that stay zero give no row
  table.bytesWritten = 80;
  EXPECT_EQ(pass().size(), 8u);
}

TEST_F(ProcessEnumeratorTest, aFailedListingGivesNothingAndForgetsTheCounters) {
  addBusy(1, 0);
  pass();
  table.slotCount = 0;
  EXPECT_TRUE(pass().empty());
  EXPECT_EQ(table.listings, 3);  // no second call
  table.slotCount.reset();
  addBusy(1, second);
  EXPECT_EQ(onlyRow().cpuFraction, 0.0);
  addBusy(1, 2 * second);
  EXPECT_DOUBLE_EQ(onlyRow().cpuFraction, 1.0);
}

TEST_F(ProcessEnumeratorTest, theTimeOfAFailedPassCounts) {
  addBusy(1, 0);
  pass();
  table.slotCount = -1;
  pass(10.0);
  table.slotCount.reset();
  pass(10.0);
  addBusy(1, second);
  EXPECT_DOUBLE_EQ(pass(2.0).front().cpuFraction, 0.5);
}

TEST_F(ProcessEnumeratorTest, theFirstPassHasNoFractions) {
  addBusy(1, 900 * second);
  EXPECT_EQ(onlyRow().cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, aProcessSeenForTheFirstTimeHasNoFraction) {
  addBusy(1, 0);
  pass();
  addBusy(1, second);
  addBusy(2, 900 * second);
  const auto& rows = pass();
  EXPECT_DOUBLE_EQ(rows[0].cpuFraction, 1.0);
  EXPECT_EQ(rows[1].cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, twoFullCoresAreTwoAndSeveralProcessesCanExceedOne) {
  addBusy(1, 0);
  addBusy(2, 0);
  pass();
  addBusy(1, 3 * second, 5 * second);
  addBusy(2, 6 * second);
  const auto& rows = pass(4.0);
  EXPECT_DOUBLE_EQ(rows[0].cpuFraction, 2.0);
  EXPECT_DOUBLE_EQ(rows[1].cpuFraction, 1.5);
}

TEST_F(ProcessEnumeratorTest, aFractionIsCutAtTheProcessorCount) {
  addBusy(1, 0);
  pass();
  addBusy(1, 5 * second);
  EXPECT_EQ(onlyRow().cpuFraction, 4.0);
}

TEST_F(ProcessEnumeratorTest, aCounterThatFellShowsAsFullUse) {
  addBusy(1, second);
  pass();
  addBusy(1, second - 1);
  EXPECT_EQ(onlyRow().cpuFraction, 4.0);
}

TEST_F(ProcessEnumeratorTest, aClockThatStopsOrIsSetBackGivesNoFractions) {
  addBusy(1, 0);
  pass();
  addBusy(1, second);
  EXPECT_EQ(pass(0.0).front().cpuFraction, 0.0);
  addBusy(1, 2 * second);
  EXPECT_EQ(pass(-5.0).front().cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, theTimebaseTurnsUnitsIntoNanoseconds) {
  table.base = {125, 3};
  addBusy(1, 0);
  pass();
  addBusy(1, 24'000'000);
  EXPECT_EQ(onlyRow().cpuFraction, 1.0);
}

TEST_F(ProcessEnumeratorTest, aTimebaseThatCouldNotBeReadGivesNoFractions) {
  table.base = {0, 0};
  addBusy(1, 0);
  pass();
  addBusy(1, second);
  EXPECT_EQ(onlyRow().cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, aVanishedProcessIsForgotten) {
  addBusy(1, 0);
  pass();
  table.remove(1);
  pass();
  addBusy(1, second);
  EXPECT_EQ(onlyRow().cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, aProcessThatWasUnreadableOnceStartsOver) {
  addBusy(1, 0);
  pass();
  table.entry(1).taskInfo.reset();
  pass();
  addBusy(1, second);
  EXPECT_EQ(onlyRow().cpuFraction, 0.0);
}

TEST_F(ProcessEnumeratorTest, theProcessorCountIsReadOncePerPass) {
  for (std::int32_t pid = 1; pid <= 8; ++pid) table.add(pid);
  pass();
  EXPECT_EQ(processors.processorCountReads, 1);
  EXPECT_EQ(workspace.listings, 1);
}

TEST_F(ProcessEnumeratorTest, aReadableNameIsTakenUpToItsFirstNUL) {
  table.add(1, std::string("work\0er", 7));
  EXPECT_EQ(onlyRow().name, "work");
  table.add(1, "Gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(onlyRow().name, "Gr\xC3\xBC\xC3\x9F");
}

TEST_F(ProcessEnumeratorTest, aGarbledNameGivesWayToTheApplications) {
  workspace.add(1, SharedText("Worker"));
  for (const char* garbled : {"w\xEF\xBF\xBDrker", "w\xFFrker", "work\xC3", ""}) {
    table.add(1, garbled);
    const auto row = onlyRow();
    EXPECT_EQ(row.name, "Worker") << garbled;
    EXPECT_EQ(row.displayName, "Worker") << garbled;
  }
}

TEST_F(ProcessEnumeratorTest, aGarbledNameWithoutAnApplicationIsThePID) {
  for (const char* garbled : {"w\xEF\xBF\xBDrker", "w\xFFrker", "work\xC3", ""}) {
    table.add(123, garbled);
    const auto row = onlyRow();
    EXPECT_EQ(row.name, "pid 123") << garbled;
    EXPECT_EQ(row.displayName, "") << garbled;
  }
}

TEST_F(ProcessEnumeratorTest, aNameIsNeverEmpty) {
  table.add(123, "");
  workspace.add(123, std::nullopt, SharedText("org.example.nameless"));
  EXPECT_EQ(onlyRow().name, "pid 123");
  workspace.applications.front().localizedName = SharedText("");
  const auto row = onlyRow();
  EXPECT_EQ(row.name, "pid 123");
  EXPECT_EQ(row.displayName, "");
}

TEST_F(ProcessEnumeratorTest, aProcessFromTheFutureHasNoUptime) {
  calendar.set(Date{1000.0});
  table.add(1).bsdInfo->startSeconds = 1002;
  EXPECT_EQ(pass(1.5).front().uptime, 0.0);
  EXPECT_EQ(pass(1.0).front().uptime, 0.5);
}

TEST_F(ProcessEnumeratorTest, aProcessWithoutAPathKeepsItsRow) {
  table.add(1).executablePath.reset();
  EXPECT_FALSE(onlyRow().executablePath.has_value());
}

TEST_F(ProcessEnumeratorTest, exactSizesReplaceTheEstimatesOfTheThirtyTwoLargest) {
  for (std::int32_t pid = 1; pid <= 40; ++pid) {
    auto& process = table.add(pid);
    process.taskInfo->residentBytes = static_cast<std::uint64_t>(pid) * 100;
    process.exactResidentBytes = static_cast<std::uint64_t>(pid) * 100 + 7;
  }
  table.entry(40).exactResidentBytes.reset();
  const auto& rows = pass();
  EXPECT_EQ(table.exactReads.size(), 32u);
  EXPECT_EQ(*std::min_element(table.exactReads.begin(), table.exactReads.end()), 9);
  EXPECT_EQ(rows[7].residentBytes, 800u);
  EXPECT_EQ(rows[8].residentBytes, 907u);
  EXPECT_EQ(rows[38].residentBytes, 3907u);
  EXPECT_EQ(rows[39].residentBytes, 4000u);
}

TEST_F(ProcessEnumeratorTest, thousandsOfProcessesKeepTheirOwnCounters) {
  for (std::int32_t i = 0; i < 3000; ++i) addBusy(1 + i * 1399, 0);
  pass();
  for (std::int32_t i = 0; i < 3000; ++i) {
    table.processes[static_cast<std::size_t>(i)].taskInfo->totalUser =
        static_cast<std::uint64_t>(i) * 1'000'000;
  }
  const auto& rows = pass();
  ASSERT_EQ(rows.size(), 3000u);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_NEAR(rows[i].cpuFraction, static_cast<double>(i) / 1000.0, 1e-9) << i;
  }
}

using ProcessEnumeratorDeathTest = ProcessEnumeratorTest;

TEST_F(ProcessEnumeratorDeathTest, aSumOfCPUTimesThatOverflowsStopsTheProgram) {
  addBusy(1, std::numeric_limits<std::uint64_t>::max(), 0);
  pass();
  addBusy(1, std::numeric_limits<std::uint64_t>::max(), 1);
  EXPECT_DEATH(pass(), "broken invariant");
}

TEST_F(ProcessEnumeratorDeathTest, aParentThatIsNoProcessIdentifierStopsTheProgram) {
  table.add(1).bsdInfo->parentPID = 2147483647;
  pass();
  table.add(1).bsdInfo->parentPID = 2147483648;
  EXPECT_DEATH(pass(), "broken invariant");
}

}  // namespace
}  // namespace vorli

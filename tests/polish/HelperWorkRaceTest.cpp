#include "polish/HelperWorkRace.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/helper/HelperFixture.h"

#include <memory>
#include <string>
#include <vector>

namespace vorli {
namespace {

constexpr double budget = 2.65;

/// Records how many requests the daemon had received at each read.
class OrderedCounters final : public ports::MemoryCounters {
 public:
  explicit OrderedCounters(const fakes::HelperTransport& daemon) : daemon_(daemon) {}

  std::uint64_t pageSizeBytes() override { return 4096; }
  std::optional<ports::VMStatistics> readStatistics() override {
    requestsAtReading.push_back(daemon_.requests.size());
    return ports::VMStatistics{};
  }
  std::uint64_t physicalMemoryBytes() override { return 1; }
  std::optional<ports::SwapUsage> readSwapUsage() override { return std::nullopt; }
  ports::PressureReading readPressure() override { return {}; }

  std::vector<std::size_t> requestsAtReading;

 private:
  const fakes::HelperTransport& daemon_;
};

struct HelperWorkRaceTest : HelperFixture {
  HelperWorkRaceTest() { memory.statistics->freeCount = 1000; }

  HelperWorkRequest request() {
    return {.helperReady = true,
            .audioActive = false,
            .minDisplayTime = budget,
            .startedAt = scheduler.now(),
            .snapshotBox = snapshotBox};
  }
  auto run(HelperWorkRequest wanted) {
    return start(race->runHelperWorkRacingDisplayBudget(std::move(wanted)));
  }
  auto run() { return run(request()); }

  std::vector<std::string> popoverLines() const {
    std::vector<std::string> lines;
    for (const auto& line : log.lines()) {
      if (line.category == "popover") lines.push_back(line.message);
    }
    return lines;
  }

  static constexpr auto exceeded =
      "handleTap: helper exceeded 2.650000s display budget; treating as optimistic success and letting "
      "actual "
      "reclaim land in background";

  fakes::MemoryCounters memory;
  fakes::CalendarClock calendar{scheduler};
  std::shared_ptr<SnapshotBox> snapshotBox = std::make_shared<SnapshotBox>();
  std::unique_ptr<HelperWorkRace> race =
      std::make_unique<HelperWorkRace>(scheduler, *manager, memory, calendar);
};

using Lines = std::vector<std::string>;

TEST_F(HelperWorkRaceTest, withoutAHelperItReturnsAtOnceWithASnapshotAndNoCall) {
  auto wanted = request();
  wanted.helperReady = false;
  const auto outcome = run(wanted);
  EXPECT_EQ(outcome->value, false);
  EXPECT_EQ(outcome->at, wanted.startedAt);
  ASSERT_TRUE(snapshotBox->snapshot.has_value());
  EXPECT_EQ(snapshotBox->snapshot->freeBytes, 4'096'000u);
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(HelperWorkRaceTest, bothRepliesInTimeDecideIt) {
  transport.flushDNS.delaySeconds = 0.2;
  transport.purgeMemory.delaySeconds = 1.25;
  const auto outcome = run();
  scheduler.advance(1.25 - frame);
  EXPECT_EQ(outcome->value, std::nullopt);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(
      popoverLines(),
      Lines{"handleTap: helper calls done in budget. dns exit=0 purge exit=0 reachable=true. Elapsed 1.25s"});
}

TEST_F(HelperWorkRaceTest, bothCallsAreSentAtOnce) {
  transport.setConduct(Conduct::silent);
  run();
  EXPECT_EQ(transport.requests, (Lines{"flushDNS", "purgeMemory"}));
}

TEST_F(HelperWorkRaceTest, aSlowFlushIsWaitedForToo) {
  transport.flushDNS.delaySeconds = 2.0;
  transport.purgeMemory.delaySeconds = 0.5;
  const auto outcome = run();
  scheduler.advance(2.0 - frame);
  EXPECT_EQ(outcome->value, std::nullopt);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, true);
}

TEST_F(HelperWorkRaceTest, theSnapshotIsTakenBeforeAnyCall) {
  OrderedCounters counters(transport);
  HelperWorkRace ordered(scheduler, *manager, counters, calendar);
  const auto outcome = start(ordered.runHelperWorkRacingDisplayBudget(request()));
  scheduler.advance(budget);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(counters.requestsAtReading, std::vector<std::size_t>{0});
}

TEST_F(HelperWorkRaceTest, aFailedSampleLeavesTheEmptySnapshot) {
  memory.statistics.reset();
  run();
  EXPECT_EQ(snapshotBox->snapshot, MemorySnapshot::empty);
}

TEST_F(HelperWorkRaceTest, whilePlayingSoundIsFlushedAndNotPurged) {
  auto wanted = request();
  wanted.audioActive = true;
  transport.flushDNS.delaySeconds = 0.5;
  const auto outcome = run(wanted);
  scheduler.advance(0.5);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(transport.requests, Lines{"flushDNS"});
  EXPECT_EQ(
      popoverLines(),
      Lines{"handleTap: helper calls done in budget. dns exit=0 purge exit=0 reachable=true. Elapsed 0.50s"});
}

TEST_F(HelperWorkRaceTest, withoutAProxyTheHelperIsNotReached) {
  transport.leadsToDaemon = false;
  const auto outcome = run();
  EXPECT_EQ(outcome->value, false);
  EXPECT_EQ(popoverLines(),
            Lines{"handleTap: helper calls done in budget. dns exit=-1 purge exit=-1 reachable=false. "
                  "Elapsed 0.00s"});
}

TEST_F(HelperWorkRaceTest, noProxyWhilePlayingSoundCountsAsReached) {
  auto wanted = request();
  wanted.audioActive = true;
  transport.leadsToDaemon = false;
  const auto outcome = run(wanted);
  EXPECT_EQ(outcome->value, true);
}

TEST_F(HelperWorkRaceTest, onlyTheTwoTextsOfThePurgeMeanNotReached) {
  const auto reachedWith = [this](HelperReply purge) {
    transport.purgeMemory.answer = std::move(purge);
    const auto outcome = run();
    scheduler.advance(budget);
    return outcome->value;
  };
  EXPECT_EQ(reachedWith({0, "Helper purgeMemory timed out"}), false);
  EXPECT_EQ(reachedWith({0, "No helper connection"}), false);
  EXPECT_EQ(reachedWith({-1, "Helper purgeMemory timed out."}), true);
  EXPECT_EQ(reachedWith({13, "Permission denied"}), true);
  EXPECT_EQ(reachedWith({-1, ""}), true);
}

TEST_F(HelperWorkRaceTest, theFlushDoesNotAffectTheOutcome) {
  transport.flushDNS.answer = {-1, "No helper connection"};
  const auto outcome = run();
  scheduler.advance(budget);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(
      popoverLines(),
      Lines{
          "handleTap: helper calls done in budget. dns exit=-1 purge exit=0 reachable=true. Elapsed 0.00s"});
}

TEST_F(HelperWorkRaceTest, aPurgeOf264IsInTimeAndOneOf266IsNot) {
  transport.purgeMemory.delaySeconds = 2.64;
  auto outcome = run();
  scheduler.advance(3.0);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(
      popoverLines(),
      Lines{"handleTap: helper calls done in budget. dns exit=0 purge exit=0 reachable=true. Elapsed 2.64s"});

  log.clear();
  transport.purgeMemory.delaySeconds = 2.66;
  const double startedAt = scheduler.now();
  outcome = run();
  scheduler.advance(3.0);
  EXPECT_EQ(outcome->value, true);
  EXPECT_DOUBLE_EQ(outcome->at, startedAt + 2.65);
  EXPECT_EQ(popoverLines(), Lines{exceeded});
}

TEST_F(HelperWorkRaceTest, theBudgetWinsAgainstAPurgeThatComesLater) {
  transport.purgeMemory.conduct = Conduct::silent;
  const auto outcome = run();
  scheduler.advance(budget - frame);
  EXPECT_EQ(outcome->value, std::nullopt);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, true);

  log.clear();
  std::move(transport.purgeMemory.held.at(0))({0, "late"});
  scheduler.advance(30.0);
  EXPECT_EQ(outcome->resumes, 1);
  EXPECT_EQ(log.messages(), Lines{"purgeMemory reply: exit=0 output=late"});
}

TEST_F(HelperWorkRaceTest, theFirstOfTwoSimultaneousEventsDecides) {
  transport.purgeMemory.conduct = Conduct::silent;
  auto outcome = run();
  scheduler.advanceClockOnly(budget);  // the budget has run out, and the main thread was busy
  std::move(transport.purgeMemory.held.at(0))({0, "No helper connection"});
  scheduler.runReady();
  EXPECT_EQ(outcome->resumes, 1);
  EXPECT_EQ(outcome->value, false);

  outcome = run();
  scheduler.advance(budget);
  std::move(transport.purgeMemory.held.at(1))({0, "No helper connection"});
  scheduler.runReady();
  EXPECT_EQ(outcome->resumes, 1);
  EXPECT_EQ(outcome->value, true);
}

TEST_F(HelperWorkRaceTest, aFlushThatTimesOutExceedsTheBudgetThoughThePurgeWasInTime) {
  transport.flushDNS.conduct = Conduct::silent;
  const auto outcome = run();
  scheduler.advance(budget);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(popoverLines(), Lines{exceeded});

  scheduler.advance(5.0 - budget);
  EXPECT_EQ(errors("flushDNS: XPC reply timed out after 5s"), 1);
  EXPECT_EQ(popoverLines(), Lines{exceeded});
}

TEST_F(HelperWorkRaceTest, aPurgeAtItsLimitIsAmongTheLateResults) {
  transport.purgeMemory.conduct = Conduct::silent;
  const auto outcome = run();
  scheduler.advance(20.0);
  EXPECT_EQ(outcome->value, true);
  EXPECT_EQ(errors("purgeMemory: XPC reply timed out after 20s"), 1);
  EXPECT_EQ(popoverLines(), Lines{exceeded});
}

TEST_F(HelperWorkRaceTest, twoRacesAreIndependent) {
  transport.purgeMemory.conduct = Conduct::silent;
  const auto first = run();
  scheduler.advance(1.0);
  const auto second = run();
  std::move(transport.purgeMemory.held.at(1))({0, "No helper connection"});
  scheduler.runReady();
  EXPECT_EQ(first->value, std::nullopt);
  EXPECT_EQ(second->value, false);
  scheduler.advance(budget - 1.0);
  EXPECT_EQ(first->value, true);
}

TEST_F(HelperWorkRaceTest, itsOwnerMayBeDestroyedDuringTheWork) {
  transport.setConduct(Conduct::silent);
  const auto outcome = run();
  tasks.reset();
  race.reset();
  std::move(transport.purgeMemory.held.at(0))({0, "late"});
  scheduler.advance(30.0);
  EXPECT_EQ(outcome->resumes, 0);
}

TEST(HelperResultBoxTest, aResultThatIsThereIsHandedOverAtOnce) {
  HelperResultBox box;
  box.fill({{0, "dns"}, {3, "purge"}});
  std::vector<std::int32_t> codes;
  box.whenFilled(OnceReply<HelperWorkResult>(
      [&codes](HelperWorkResult result) { codes.push_back(result.purge.exitCode); }));
  EXPECT_EQ(codes, std::vector<std::int32_t>{3});
}

TEST(HelperResultBoxTest, aResultThatComesLaterIsHandedOverOnce) {
  HelperResultBox box;
  std::vector<std::string> texts;
  box.whenFilled(
      OnceReply<HelperWorkResult>([&texts](HelperWorkResult result) { texts.push_back(result.dns.output); }));
  EXPECT_TRUE(texts.empty());
  box.fill({{0, "dns"}, {0, "purge"}});
  EXPECT_EQ(texts, Lines{"dns"});
}

}  // namespace
}  // namespace vorli

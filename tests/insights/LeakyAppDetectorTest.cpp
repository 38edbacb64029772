#include "insights/LeakyAppDetector.h"
#include "tests/fakes/Workspace.h"

namespace vorli {
namespace {

using ports::ActivationPolicy;

constexpr std::uint64_t GiB = 1'073'741'824;

struct LeakyAppDetectorTest : testing::Test {
  ProcessSnapshot& add(std::int32_t pid, std::uint64_t residentBytes = 5 * GiB, double uptime = 100'000.0) {
    auto& row = rows.emplace_back();
    row.id = pid;
    row.name = "process";
    row.displayName = "App " + std::to_string(pid);
    row.bundleIdentifier = SharedText("org.example.app");
    row.residentBytes = residentBytes;
    row.uptime = uptime;
    row.activationPolicy = ActivationPolicy::regular;
    return row;
  }

  std::vector<std::int32_t> leakyPIDs() {
    std::vector<std::int32_t> pids;
    for (const auto& row : detector.detect(rows)) pids.push_back(row.pid);
    return pids;
  }

  fakes::Workspace workspace;
  LeakyAppDetector detector{workspace};
  std::vector<ProcessSnapshot> rows;
};

using PIDs = std::vector<std::int32_t>;

TEST_F(LeakyAppDetectorTest, noRowsGiveNoFindings) {
  EXPECT_EQ(detector.detect({}), std::vector<LeakyApp>());
}

TEST_F(LeakyAppDetectorTest, aRowDescribesItsApplication) {
  add(42, 6 * GiB, 50'000.5);
  workspace.add(41, SharedText("Other")).bundleURL = SharedText("/Applications/Other.app");
  workspace.add(42, SharedText("App")).bundleURL = SharedText("/Applications/App.app");
  EXPECT_EQ(detector.detect(rows), (std::vector<LeakyApp>{{.id = 42,
                                                           .pid = 42,
                                                           .displayName = "App 42",
                                                           .bundleIdentifier = SharedText("org.example.app"),
                                                           .bundleURL = SharedText("/Applications/App.app"),
                                                           .residentBytes = 6'442'450'944,
                                                           .uptime = 50'000.5}}));
}

TEST_F(LeakyAppDetectorTest, fourGiBQualifyAndOneByteLessDoesNot) {
  add(1, 4'294'967'295);
  add(2, 4'294'967'296);
  EXPECT_EQ(leakyPIDs(), PIDs{2});
}

TEST_F(LeakyAppDetectorTest, sixHoursQualifyAndAMomentLessDoesNot) {
  add(1, 5 * GiB, 21'599.999);
  add(2, 5 * GiB, 21'600.0);
  EXPECT_EQ(leakyPIDs(), PIDs{2});
}

TEST_F(LeakyAppDetectorTest, onlyRegularApplicationsAreListed) {
  add(1, 10 * GiB).activationPolicy.reset();
  add(2, 10 * GiB).activationPolicy = ActivationPolicy::accessory;
  add(3, 10 * GiB).activationPolicy = ActivationPolicy::prohibited;
  add(4, 10 * GiB);
  EXPECT_EQ(leakyPIDs(), PIDs{4});
}

TEST_F(LeakyAppDetectorTest, theProgramItselfIsNeverListed) {
  add(1).bundleIdentifier = SharedText("com.kv.vorli");
  add(2).bundleIdentifier.reset();
  add(3).bundleIdentifier = SharedText("com.kv.vorli.helper");
  EXPECT_EQ(leakyPIDs(), (PIDs{2, 3}));
}

TEST_F(LeakyAppDetectorTest, anApplicationThatHasQuitMeanwhileStillQualifies) {
  add(42);
  workspace.add(43, SharedText("Other")).bundleURL = SharedText("/Applications/Other.app");
  ASSERT_EQ(leakyPIDs(), PIDs{42});
  EXPECT_FALSE(detector.detect(rows)[0].bundleURL.has_value());
  workspace.add(42, SharedText("Without a place"));
  EXPECT_FALSE(detector.detect(rows)[0].bundleURL.has_value());
}

TEST_F(LeakyAppDetectorTest, applicationsWithoutAProcessIdentifierAreIgnored) {
  add(0);
  workspace.add(0, SharedText("Zero")).bundleURL = SharedText("/Applications/Zero.app");
  ASSERT_EQ(leakyPIDs(), PIDs{0});
  EXPECT_FALSE(detector.detect(rows)[0].bundleURL.has_value());
}

TEST_F(LeakyAppDetectorTest, theLargestComesFirstAndEqualsKeepTheirOrder) {
  add(1, 5 * GiB);
  add(2, 7 * GiB);
  add(3, 5 * GiB);
  add(4, 6 * GiB);
  EXPECT_EQ(leakyPIDs(), (PIDs{2, 4, 1, 3}));
}

TEST_F(LeakyAppDetectorTest, manyEqualsKeepTheirOrderToo) {
  PIDs expected;
  for (std::int32_t pid = 100; pid > 0; --pid) {
    add(pid);
    expected.push_back(pid);
  }
  EXPECT_EQ(leakyPIDs(), expected);
}

TEST_F(LeakyAppDetectorTest, eachCallIsIndependentOfTheLast) {
  add(1);
  EXPECT_EQ(leakyPIDs(), PIDs{1});
  rows[0].residentBytes = GiB;
  EXPECT_EQ(leakyPIDs(), PIDs{});
  rows[0].residentBytes = 4 * GiB;
  EXPECT_EQ(leakyPIDs(), PIDs{1});
}

}  // namespace
}  // namespace vorli

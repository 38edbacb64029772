#include "linux/applications/ApplicationUnits.h"
#include "tests/linux/RecordedTree.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

using PIDs = std::vector<std::int32_t>;

// The control groups of a user, as the kernel shows them: a unit is made first and gets its process later.
struct ApplicationUnitsTest : testing::Test {
  ApplicationUnitsTest() { std::filesystem::create_directories(tree.path("app.slice")); }

  void process(std::int32_t pid, std::uint64_t start) { tree.process(pid, "x", {.startTicks = start}); }
  void make(const std::string& unit) const {
    tree.write(unit + "/cgroup.procs", "");
    tree.write(unit + "/cgroup.events", "populated 0\n");
  }
  void populate(const std::string& unit, const std::string& pids) const {
    tree.write(unit + "/cgroup.procs", pids);
    tree.write(unit + "/cgroup.events", "populated 1\n");
  }
  ApplicationUnits follow() {
    return ApplicationUnits(
        tree.path("app.slice").string(), [this](std::int32_t pid) { started.push_back(pid); }, tree.root());
  }
  PIDs startedByNow() {
    QCoreApplication::processEvents();
    return std::exchange(started, {});
  }

  RecordedTree tree;
  PIDs started;
};

TEST_F(ApplicationUnitsTest, existingUnitsAreReportedByTheirOldestProcess) {
  process(10, 500);
  process(11, 400);
  process(12, 600);
  populate("app.slice/app-gnome-org.example.Viewer-11.scope", "10\n11\n12\n");
  const auto units = follow();
  EXPECT_EQ(startedByNow(), PIDs{11});
}

TEST_F(ApplicationUnitsTest, aNewUnitIsReportedOnceItHasAProcess) {
  const auto units = follow();
  process(10, 500);
  make("app.slice/app-org.example.Viewer@1.service");
  EXPECT_EQ(startedByNow(), PIDs{});
  populate("app.slice/app-org.example.Viewer@1.service", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{10});
  populate("app.slice/app-org.example.Viewer@1.service", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{});
}

TEST_F(ApplicationUnitsTest, unitsInASliceOfTheirOwnAreFoundToo) {
  process(10, 500);
  process(11, 500);
  populate("app.slice/app-graphical.slice/app-one-1.scope", "10\n");
  const auto units = follow();
  EXPECT_EQ(startedByNow(), PIDs{10});
  populate("app.slice/app-graphical.slice/snap.viewer.viewer-2.scope", "11\n");
  EXPECT_EQ(startedByNow(), PIDs{11});
  make("app.slice/later.slice/app-two-1.scope");
  EXPECT_EQ(startedByNow(), PIDs{});
  populate("app.slice/later.slice/app-two-1.scope", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{10});
}

TEST_F(ApplicationUnitsTest, otherUnitsAndTheEndOfOneAreNoStarts) {
  process(10, 500);
  populate("app.slice/dbus.service", "10\n");
  populate("app.slice/app-one.socket", "10\n");
  populate("app.slice/vte-spawn-1.scope", "10\n");
  const auto units = follow();
  populate("app.slice/run-u1.scope", "10\n");
  make("app.slice/app-never-1.scope");
  EXPECT_EQ(startedByNow(), PIDs{});
  tree.remove("app.slice/app-never-1.scope");
  tree.remove("app.slice");
  EXPECT_EQ(startedByNow(), PIDs{});
}

TEST_F(ApplicationUnitsTest, withoutASliceNothingIsReported) {
  tree.remove("app.slice");
  const auto units = follow();
  EXPECT_EQ(startedByNow(), PIDs{});
}

TEST_F(ApplicationUnitsTest, aSliceThatIsMadeLaterIsFollowed) {
  tree.remove("app.slice");
  const auto units = follow();
  process(10, 500);
  process(11, 500);
  populate("app.slice/app-one-1.scope", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{10});
  populate("app.slice/app-two-1.scope", "11\n");
  EXPECT_EQ(startedByNow(), PIDs{11});
}

TEST_F(ApplicationUnitsTest, aSliceThatTheManagerRemovesAndMakesAgainIsFollowedAgain) {
  const auto units = follow();
  process(10, 500);
  populate("app.slice/app-one-1.scope", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{10});
  tree.remove("app.slice");
  EXPECT_EQ(startedByNow(), PIDs{});
  populate("other.slice/app-two-1.scope", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{});
  populate("app.slice/app-two-1.scope", "10\n");
  EXPECT_EQ(startedByNow(), PIDs{10});
}

}  // namespace
}  // namespace vorli::linuxhost

#include "linux/applications/ProcessFamily.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>
#include <set>
#include <utility>
#include <vector>

namespace vorli::linuxhost {
namespace {

using Kinship = ProcessFamily::Kinship;

struct ProcessFamilyTest : testing::Test {
  void process(std::int32_t pid, std::int32_t parent, const std::string& program,
               const std::string& script = "") {
    tree.process(pid, "x", {.parent = parent});
    tree.program(pid, program);
    std::string commandLine = program + '\0';
    if (!script.empty()) {
      tree.write(script, "");
      commandLine += tree.path(script).string() + '\0';
    }
    tree.write("proc/" + std::to_string(pid) + "/cmdline", commandLine);
  }
  /// Processes of one program, each the child of the one before it.
  void line(const std::string& program, const std::vector<std::int32_t>& pids) {
    std::int32_t parent = 1;
    for (const auto pid : pids) process(pid, std::exchange(parent, pid), program);
  }
  std::int32_t above(std::int32_t pid, Kinship kinship = Kinship::engine) {
    return ProcessFamily(tree.root()).nearestApplication(pid, kinship, [this](std::int32_t ancestor) {
      return applications.contains(ancestor);
    });
  }

  RecordedTree tree;
  std::set<std::int32_t> applications;
};

TEST_F(ProcessFamilyTest, theNearestAncestorOfTheSameProgramCounts) {
  line("/opt/browser/browser", {10, 20, 21, 22});
  applications = {10, 20};
  EXPECT_EQ(above(22), 20);
  EXPECT_EQ(above(20), 10);
  EXPECT_EQ(above(10), 0);
  applications.clear();
  EXPECT_EQ(above(22), 0);
}

TEST_F(ProcessFamilyTest, twoApplicationsOverOneProgramKeepTheirOwnHelpers) {
  line("/usr/bin/engine", {10, 20});
  line("/usr/bin/engine", {11, 21});
  applications = {10, 11};
  EXPECT_EQ(above(20), 10);
  EXPECT_EQ(above(21), 11);
}

TEST_F(ProcessFamilyTest, aPrivateFolderMakesRelativesAndASharedOneDoesNot) {
  process(10, 1, "/opt/browser/browser");
  process(20, 10, "/opt/browser/crash-handler");
  process(11, 1, "/usr/bin/viewer");
  process(21, 11, "/usr/bin/indexer");
  applications = {10, 11};
  EXPECT_EQ(above(20), 10);
  EXPECT_EQ(above(21), 0);
}

TEST_F(ProcessFamilyTest, anotherProgramOnTheWayEndsTheFamily) {
  process(10, 1, "/usr/bin/python3.11", "opt/terminal.py");
  process(20, 10, "/usr/bin/bash");
  process(30, 20, "/usr/bin/python3.11", "home/job.py");
  applications = {10};
  EXPECT_EQ(above(30), 0);
  EXPECT_EQ(above(20), 0);
}

TEST_F(ProcessFamilyTest, aHelperUnderASharedEngineBelongsToItsAncestor) {
  process(10, 1, "/usr/lib/electron28/electron", "usr/lib/chat/app.asar");
  process(11, 1, "/usr/lib/electron28/electron", "usr/lib/other/app.asar");
  process(20, 10, "/usr/lib/electron28/electron");
  process(21, 20, "/usr/lib/electron28/electron");
  applications = {10, 11};
  EXPECT_EQ(above(21), 10);
}

TEST_F(ProcessFamilyTest, withWindowsOfItsOwnAnInterpretersProcessIsARelativeByItsScriptOnly) {
  process(10, 1, "/usr/bin/python3.11", "opt/launcher.py");
  process(20, 10, "/usr/bin/python3.11", "opt/other.py");
  process(21, 10, "/usr/bin/python3.11", "opt/launcher.py");
  process(22, 10, "/usr/bin/python3.11");
  applications = {10};
  EXPECT_EQ(above(20, Kinship::script), 0);
  EXPECT_EQ(above(21, Kinship::script), 10);
  EXPECT_EQ(above(22, Kinship::script), 0);
  EXPECT_EQ(above(20, Kinship::engine), 10);
  line("/opt/browser/browser", {11, 30});
  applications = {11};
  EXPECT_EQ(above(30, Kinship::script), 11);
}

TEST_F(ProcessFamilyTest, managersAndEndedProcessesHaveNoFamily) {
  line("/usr/lib/systemd/systemd", {10, 20});
  line("/usr/bin/dbus-daemon", {11, 21});
  applications = {1, 10, 11};
  for (const int pid : {20, 21, 10, 4711}) EXPECT_EQ(above(pid), 0) << pid;
}

TEST_F(ProcessFamilyTest, aLoopOfParentsHasNoFamily) {
  process(10, 20, "/opt/a/a");
  process(20, 10, "/opt/a/a");
  EXPECT_EQ(above(10), 0);
}

}  // namespace
}  // namespace vorli::linuxhost

#include "linux/session/ShellProcess.h"
#include "tests/linux/RecordedTree.h"

#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ShellProcessTest : testing::Test {
  std::string file(std::int32_t pid, const std::string& name) const {
    return "proc/" + std::to_string(pid) + "/" + name;
  }
  void add(std::int32_t pid, const std::string& name, std::uint64_t startTicks = 100) const {
    tree.process(pid, name, {.startTicks = startTicks});
    tree.write(file(pid, "comm"), name + "\n");
    tree.program(pid, "/usr/bin/" + name);
    setWords(pid, "cmdline", {name});
  }
  void setWords(std::int32_t pid, const std::string& name, const std::vector<std::string>& words) const {
    std::string text;
    for (const auto& word : words) text += word + '\0';
    tree.write(file(pid, name), text);
  }
  std::vector<ShellProcess> find() const { return shellProcesses(programs, session, tree.root()); }
  std::vector<std::int32_t> pids() const {
    std::vector<std::int32_t> found;
    for (const auto& process : find()) found.push_back(process.pid);
    return found;
  }

  const RecordedTree tree;
  ShellSession session{":7", ""};
  std::vector<ShellProgram> programs{{"first-panel"}, {"second-panel"}};
};

TEST_F(ShellProcessTest, aProgramBeforeAnotherInTheListComesFirstAndThenTheOlderProcess) {
  add(10, "second-panel", 1);
  add(11, "first-panel", 30);
  add(12, "first-panel", 20);
  add(13, "editor", 2);
  EXPECT_THAT(pids(), ElementsAre(12, 11, 10));
}

TEST_F(ShellProcessTest, readsEverythingNeededToStartItAgain) {
  add(10, "first-panel");
  setWords(10, "cmdline", {"panel", "--profile", "", "at home"});
  setWords(10, "environ", {"HOME=/home/ada", "DISPLAY=:7.0"});
  std::filesystem::create_symlink("/home/ada", tree.path(file(10, "cwd")));
  tree.write(file(10, "cgroup"), "0::/user.slice/user@1000.service/session.slice/panel.service\n");
  const auto found = find();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].program.processName, "first-panel");
  EXPECT_THAT(found[0].command, ElementsAre("/usr/bin/first-panel", "--profile", "", "at home"));
  EXPECT_EQ(found[0].folder, "/home/ada");
  EXPECT_THAT(found[0].environment, ElementsAre("HOME=/home/ada", "DISPLAY=:7.0"));
  EXPECT_EQ(found[0].unit, "panel.service");
}

TEST_F(ShellProcessTest, aProgramThatWasUpgradedIsStartedAtItsPath) {
  add(10, "first-panel");
  tree.program(10, "/usr/bin/first-panel (deleted)");
  ASSERT_EQ(find().size(), 1U);
  EXPECT_THAT(find()[0].command, ElementsAre("/usr/bin/first-panel"));
}

TEST_F(ShellProcessTest, processesOfOtherSessionsDoNotCount) {
  add(10, "first-panel");  // names no display
  add(11, "first-panel", 101);
  setWords(11, "environ", {"DISPLAY=:70"});
  add(12, "first-panel", 102);
  setWords(12, "environ", {"XDISPLAY=:8", "DISPLAY=:7.1", "WAYLAND_DISPLAY=wayland-1"});
  EXPECT_THAT(pids(), ElementsAre(10, 12));
  session.waylandDisplay = "wayland-0";
  EXPECT_THAT(pids(), ElementsAre(10));
}

TEST_F(ShellProcessTest, aProcessThatHasEndedDoesNotCount) {
  add(10, "first-panel");
  setWords(10, "cmdline", {});
  EXPECT_THAT(pids(), IsEmpty());
}

TEST_F(ShellProcessTest, otherFoldersAreSkipped) {
  tree.write("proc/10x/comm", "first-panel\n");
  tree.write("proc/comm", "first-panel\n");
  tree.write("proc/11/comm", "first-panel\n");  // nothing else can be read
  EXPECT_THAT(pids(), IsEmpty());
}

}  // namespace
}  // namespace vorli::linuxhost

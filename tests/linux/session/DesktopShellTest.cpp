#include "base/OnceReply.h"
#include "linux/session/DesktopShell.h"
#include "posix/FileDescriptor.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/linux/helper/Waiting.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <span>
#include <sstream>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

const std::string ownDisplay = ":desktop-shell-test-" + std::to_string(getpid());

/// Real processes with the names of panels and file managers, in their own session and with a virtual clock.
struct DesktopShellTest : testing::Test {
  DesktopShellTest() {
    std::string pattern = (fs::temp_directory_path() / "vorli-shell-XXXXXX").string();
    folder = workFolder = fs::canonical(mkdtemp(pattern.data()));
  }
  ~DesktopShellTest() override {
    for (const auto& process : running()) killAndWait(process.pid);
    for (const pid_t child : children) waitpid(child, nullptr, 0);
    setenv("PATH", path.c_str(), 1);
    fs::remove_all(folder);
  }

  pid_t run(const std::string& name) {
    const auto program = folder / name;
    if (!fs::exists(program)) fs::copy_file("/bin/sleep", program);
    const std::string path = program.string();
    const std::string display = "DISPLAY=" + ownDisplay;
    const char* arguments[] = {path.c_str(), "1000", nullptr};
    const char* environment[] = {display.c_str(), "COLOUR=blue", nullptr};
    const pid_t pid = fork();
    if (pid == 0) {
      if (chdir(workFolder.c_str()) == 0)
        execve(path.c_str(), const_cast<char**>(arguments), const_cast<char**>(environment));
      _exit(127);
    }
    children.push_back(pid);
    until([&] { return isRunning(pid); });
    return pid;
  }

  std::vector<ShellProcess> running() const {
    auto processes = shellProcesses(shellPanels(), session);
    for (auto& process : shellProcesses(shellFileManagers(), session))
      processes.push_back(std::move(process));
    std::erase_if(processes, [](const ShellProcess& process) { return process.environment.empty(); });
    return processes;
  }
  bool isRunning(pid_t pid) const {
    return std::ranges::any_of(running(), [pid](const auto& process) { return process.pid == pid; });
  }

  /// Lets descriptors, threads and processes continue, while the virtual clock is stopped.
  void until(const std::function<bool()>& condition) {
    waitUntil([&] {
      scheduler.runReady();
      return condition();
    });
  }
  void untilEnded(pid_t pid) {
    until([pid] { return waitpid(pid, nullptr, WNOHANG) == pid; });
  }
  /// Runs until the shell waits for that many seconds.
  void untilItWaitsFor(double seconds) {
    until([&] { return scheduler.earliestDeadline() == scheduler.now() + seconds; });
  }
  static std::string textOf(const fs::path& file) {
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
  /// Programs that are searched in PATH are found in the test's folder first, where they write down their
  /// arguments.
  void addTool(const std::string& name) {
    std::ofstream(folder / name) << "#!/bin/sh\necho \"$@\" >asked\n";
    fs::permissions(folder / name, fs::perms::owner_all);
    setenv("PATH", (folder.string() + ":" + path).c_str(), 1);
  }
  void restartFiles() {
    shell.restartFinder(OnceReply<std::string>([this](const std::string& name) { closedByHand = name; }));
  }
  /// Waits for the end, because the next test would mistake a process that is still ending for its own.
  static void killAndWait(pid_t pid) {
    const posix::FileDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (!process) return;  // it has ended meanwhile
    kill(pid, SIGKILL);
    pollfd end{process.get(), POLLIN, 0};
    EXPECT_EQ(poll(&end, 1, 20'000), 1);
  }
  static bool isAlive(pid_t pid) { return waitpid(pid, nullptr, WNOHANG) == 0; }

  const std::string path = std::getenv("PATH");
  fs::path folder;
  fs::path workFolder;  // of the processes
  const ShellSession session{ownDisplay, ownDisplay};
  std::string unit;  // in which the session's processes seem to run
  std::optional<std::string> closedByHand;
  fakes::ManualScheduler scheduler;
  std::optional<bool> hasWindows = false;
  ports::QuitAnswer answer = ports::QuitAnswer::asked;
  std::vector<std::int32_t> asked;
  fakes::CapturedLog log;
  std::vector<pid_t> children;
  DesktopShell shell{scheduler,
                     {.hasWindows = [this](std::int32_t) { return hasWindows; },
                      .askToQuit =
                          [this](std::int32_t pid) {
                            asked.push_back(pid);
                            return answer;
                          }},
                     [this](std::span<const ShellProgram> programs) {
                       auto found = shellProcesses(programs, session);
                       for (auto& process : found) process.unit = unit;
                       return found;
                     }};
};

TEST_F(DesktopShellTest, aPanelThatStaysAwayIsStartedAgainAsItWas) {
  const pid_t panel = run("plank");
  shell.restartDock();
  untilEnded(panel);
  untilItWaitsFor(2.0);
  const double endedAt = scheduler.now();
  scheduler.advanceTo(endedAt + 1.999);
  EXPECT_TRUE(running().empty());
  scheduler.advanceTo(endedAt + 2.0);
  until([this] { return !running().empty(); });
  const auto again = running();
  ASSERT_EQ(again.size(), 1U);
  EXPECT_THAT(again[0].command, ElementsAre((folder / "plank").string(), "1000"));
  EXPECT_EQ(again[0].folder, folder.string());
  EXPECT_THAT(again[0].environment, testing::UnorderedElementsAre("DISPLAY=" + ownDisplay, "COLOUR=blue"));
}

TEST_F(DesktopShellTest, aPanelWhoseFolderIsGoneIsStillStartedAgain) {
  workFolder = folder / "work";
  fs::create_directory(workFolder);
  const pid_t panel = run("plank");
  fs::remove(workFolder);
  shell.restartDock();
  untilEnded(panel);
  untilItWaitsFor(2.0);
  scheduler.advance(2.0);
  until([this] { return !running().empty(); });
}

TEST_F(DesktopShellTest, aPanelThatComesBackByItselfIsNotStartedASecondTime) {
  const pid_t panel = run("lxqt-panel");
  shell.restartDock();
  untilEnded(panel);
  untilItWaitsFor(2.0);
  const pid_t again = run("lxqt-panel");
  scheduler.advance(2.0);
  until([&] {  // ignored while the first restart is in progress
    shell.restartDock();
    return waitpid(again, nullptr, WNOHANG) == again;
  });
  EXPECT_TRUE(running().empty());
}

TEST_F(DesktopShellTest, aPanelThatDoesNotEndIsLeftAlone) {
  const pid_t panel = run("plank");
  kill(panel, SIGSTOP);
  shell.restartDock();
  untilItWaitsFor(5.0);
  scheduler.advance(5.0);
  EXPECT_THAT(log.messages(), ElementsAre("plank goes on and is not restarted"));
  EXPECT_EQ(running().size(), 1U);
}

TEST_F(DesktopShellTest, aPanelWithARestartCommandIsRestartedByIt) {
  const pid_t panel = run("lxpanel");
  addTool("lxpanelctl");
  shell.restartDock();
  until([this] { return textOf(folder / "asked") == "restart\n"; });
  EXPECT_TRUE(isAlive(panel));
}

TEST_F(DesktopShellTest, aPanelThatIsAServiceIsRestartedByTheServiceManager) {
  const pid_t panel = run("plasmashell");
  addTool("systemctl");
  unit = "plasma-plasmashell.service";
  shell.restartDock();
  until([this] { return textOf(folder / "asked") == "--user restart plasma-plasmashell.service\n"; });
  EXPECT_TRUE(isAlive(panel));
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(DesktopShellTest, aPanelThatIsNotInItsServiceIsEndedAndStartedAgain) {
  const pid_t panel = run("plasmashell");
  addTool("systemctl");
  unit = "session-2.scope";
  shell.restartDock();
  untilEnded(panel);
  untilItWaitsFor(2.0);
  scheduler.advance(2.0);
  until([this] { return running().size() == 1; });
  EXPECT_FALSE(fs::exists(folder / "asked"));
}

TEST_F(DesktopShellTest, aFileManagerInTheBackgroundIsEndedAndStartedAgain) {
  const pid_t manager = run("pcmanfm");
  restartFiles();
  untilEnded(manager);
  untilItWaitsFor(2.0);
  scheduler.advance(2.0);
  until([this] { return running().size() == 1; });
  EXPECT_THAT(asked, testing::IsEmpty());
}

TEST_F(DesktopShellTest, aFileManagerWithWindowsIsAskedAndNotSignalledUntilTheyAreClosed) {
  const pid_t manager = run("Thunar");
  hasWindows = true;
  restartFiles();
  untilItWaitsFor(1.0);
  EXPECT_THAT(asked, ElementsAre(manager));
  scheduler.advance(59.0);
  EXPECT_TRUE(isAlive(manager));
  hasWindows = false;
  scheduler.advance(0.5);
  EXPECT_TRUE(isAlive(manager));
  scheduler.advance(0.5);
  untilEnded(manager);
  EXPECT_THAT(asked, ElementsAre(manager));
  untilItWaitsFor(2.0);
  scheduler.advance(2.0);
  until([this] { return running().size() == 1; });
}

TEST_F(DesktopShellTest, aFileManagerThatKeepsItsWindowsForAMinuteIsLeftAlone) {
  const pid_t manager = run("Thunar");
  hasWindows = true;
  restartFiles();
  untilItWaitsFor(1.0);
  scheduler.advance(59.0);
  EXPECT_TRUE(log.messages().empty());
  scheduler.advance(1.0);
  EXPECT_THAT(log.messages(), ElementsAre("Thunar goes on and is not restarted"));
  EXPECT_EQ(closedByHand, std::nullopt);  // the file manager was asked, and the user kept the windows
  EXPECT_TRUE(isAlive(manager));
}

TEST_F(DesktopShellTest, aFileManagerWhoseWindowsCannotBeSeenIsStartedAgainWhenItQuitsByItself) {
  const pid_t manager = run("nautilus");
  hasWindows = std::nullopt;
  restartFiles();
  untilItWaitsFor(1.0);
  scheduler.advance(30.0);
  EXPECT_TRUE(isAlive(manager));
  EXPECT_THAT(asked, ElementsAre(manager));
  kill(manager, SIGKILL);
  untilEnded(manager);
  untilItWaitsFor(2.0);
  scheduler.advance(2.0);
  until([this] { return running().size() == 1; });
}

TEST_F(DesktopShellTest, aFileManagerWhoseWindowsCannotBeSeenIsNotSignalled) {
  const pid_t manager = run("dolphin");
  hasWindows = std::nullopt;
  // The second answer is the one for a process that is no known application.
  for (const auto given : {ports::QuitAnswer::cannotBeAsked, ports::QuitAnswer::gone}) {
    answer = given;
    closedByHand.reset();
    restartFiles();
    until([this] { return closedByHand.has_value(); });
    EXPECT_EQ(closedByHand, "Dolphin");
  }
  EXPECT_THAT(log.messages(),
              ElementsAre("dolphin goes on and is not restarted", "dolphin goes on and is not restarted"));
  EXPECT_TRUE(isAlive(manager));
}

TEST_F(DesktopShellTest, aFileManagerWhoseWindowsCannotBeSeenMayHaveNoWayToQuit) {
  const pid_t manager = run("nautilus");
  hasWindows = std::nullopt;
  restartFiles();
  untilItWaitsFor(1.0);
  scheduler.advance(59.0);
  EXPECT_EQ(closedByHand, std::nullopt);
  scheduler.advance(1.0);
  EXPECT_EQ(closedByHand, "Files");
  EXPECT_TRUE(isAlive(manager));
}

}  // namespace
}  // namespace vorli::linuxhost

#include "linux/applications/Workspace.h"
#include "tests/linux/applications/WaylandFixture.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

using ports::QuitAnswer;
using OwnerPIDs = std::vector<std::int32_t>;

// The clients run this same program, which is installed as an editor.
struct WorkspaceTest : WaylandFixture {
  WorkspaceTest() {
    tree.write("entries/org.example.Editor.desktop",
               "[Desktop Entry]\nType=Application\nName=Editor\nExec=" + program() + "\n");
  }
  static std::string program() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

  void follow() {
    workspace.emplace(
        scheduler,
        DesktopEntryPlaces{.folders = {tree.path("entries").string()}, .programPath = {}, .locales = {}});
    settle();
  }
  OwnerPIDs running() {
    OwnerPIDs pids;
    for (const auto& each : workspace->runningApplications()) pids.push_back(each.processIdentifier);
    std::ranges::sort(pids);
    return pids;
  }

  std::optional<Workspace> workspace;
};

TEST_F(WorkspaceTest, aClientOfTheCompositorThatMatchesAnEntryIsAnApplication) {
  start(Protocol::none);
  const auto editor = startClient();
  follow();
  ASSERT_EQ(running(), OwnerPIDs{editor});
  const auto& application = workspace->runningApplications().front();
  EXPECT_EQ(application.localizedName, "Editor");
  EXPECT_EQ(application.bundleIdentifier, "org.example.Editor");
  EXPECT_EQ(application.activationPolicy, ports::ActivationPolicy::regular);
}

TEST_F(WorkspaceTest, laterClientsAreFoundWhenTheListIsReadAfterFifteenSeconds) {
  start(Protocol::none);
  follow();
  const auto editor = startClient();
  scheduler.advanceTo(1014.75);
  EXPECT_EQ(running(), OwnerPIDs{});
  scheduler.runReady();
  EXPECT_EQ(running(), OwnerPIDs{});
  scheduler.advanceTo(1015.0);
  EXPECT_EQ(running(), OwnerPIDs{});  // the list does not change before the main loop runs again
  scheduler.runReady();
  EXPECT_EQ(running(), OwnerPIDs{editor});
}

TEST_F(WorkspaceTest, theOwnerOfANewWindowIsFoundThreeTenthsOfASecondAfterIt) {
  start(Protocol::foreignToplevels);
  follow();
  const auto editor = startClient();
  compositor->open({.appID = "org.example.Editor", .isActive = true});
  talk();
  scheduler.advance(0.25);
  EXPECT_EQ(running(), OwnerPIDs{});
  scheduler.advance(0.05);
  EXPECT_EQ(running(), OwnerPIDs{editor});
  settle();
  ASSERT_TRUE(workspace->frontmostApplication());
  EXPECT_EQ(workspace->frontmostApplication()->processIdentifier, editor);
  EXPECT_EQ(scheduler.pendingTimers(), 0U);
}

TEST_F(WorkspaceTest, theSecondProcessOfAProgramIsFoundByItsWindowToo) {
  start(Protocol::foreignToplevels);
  const auto first = startClient();
  compositor->open({.appID = "org.example.Editor"});
  follow();
  EXPECT_EQ(workspace->answerToTerminate(first), QuitAnswer::asked);
  const auto second = startClient();
  compositor->open({.appID = "org.example.Editor"});
  settle();
  EXPECT_EQ(running(), (OwnerPIDs{std::min(first, second), std::max(first, second)}));
  EXPECT_EQ(workspace->answerToTerminate(first), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace->answerToTerminate(second), QuitAnswer::cannotBeAsked);
}

TEST_F(WorkspaceTest, aProcessThatBecomesAnotherProgramIsMatchedAgain) {
  const std::string sleeper = "/bin/sleep";
  tree.write("entries/org.example.Sleeper.desktop",
             "[Desktop Entry]\nType=Application\nName=Sleeper\nExec=" + sleeper + " 600\n");
  start(Protocol::plasma);
  int go[2], became[2];
  ASSERT_EQ(pipe2(go, O_CLOEXEC), 0);
  ASSERT_EQ(pipe2(became, O_CLOEXEC), 0);
  const pid_t process = fork();
  if (process == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    char word = 0;
    if (read(go[0], &word, 1) == 1) execl(sleeper.c_str(), "sleep", "600", nullptr);
    _exit(1);
  }
  clients.push_back(process);
  compositor->open({.appID = "some-program", .pid = process});
  follow();
  ASSERT_EQ(running(), OwnerPIDs{process});
  EXPECT_EQ(workspace->runningApplications().front().bundleIdentifier, "org.example.Editor");

  close(became[1]);
  ASSERT_EQ(write(go[1], "x", 1), 1);
  char end = 0;
  ASSERT_EQ(read(became[0], &end, 1), 0);  // its copy is closed when it becomes the other program
  for (const int file : {go[0], go[1], became[0]}) close(file);
  compositor->open({.appID = "another-program"});
  settle();
  ASSERT_NE(workspace->firstWithIdentifier("org.example.Sleeper"), nullptr);
  EXPECT_EQ(workspace->firstWithIdentifier("org.example.Sleeper")->processIdentifier, process);
}

TEST_F(WorkspaceTest, aWindowLeadsToTheOnlyProcessOfAProgramThatSeveralEntriesStart) {
  tree.write("entries/org.example.Server.desktop",
             "[Desktop Entry]\nType=Application\nName=Server\nExec=" + program() + " --server\n");
  start(Protocol::foreignToplevels);
  follow();
  const auto server = startClient();
  compositor->open({.appID = "org.example.Server"});
  settle();
  ASSERT_EQ(running(), OwnerPIDs{server});
  EXPECT_EQ(workspace->runningApplications().front().bundleIdentifier, "org.example.Server");
  EXPECT_EQ(workspace->answerToTerminate(server), QuitAnswer::asked);

  const auto editor = startClient();
  compositor->open({.appID = "org.example.Editor"});
  settle();
  EXPECT_EQ(running(), (OwnerPIDs{std::min(server, editor), std::max(server, editor)}));
  EXPECT_EQ(workspace->firstWithIdentifier("org.example.Server")->processIdentifier, server);
  EXPECT_EQ(workspace->firstWithIdentifier("org.example.Editor")->processIdentifier, editor);
}

TEST_F(WorkspaceTest, ofTwoProcessesOfAProgramThatSeveralEntriesStartNeitherGetsTheWindow) {
  tree.write("entries/org.example.Server.desktop",
             "[Desktop Entry]\nType=Application\nName=Server\nExec=" + program() + " --server\n");
  start(Protocol::foreignToplevels);
  startClient();
  startClient();
  compositor->open({.appID = "org.example.Server"});
  follow();
  EXPECT_EQ(running(), OwnerPIDs{});
}

TEST_F(WorkspaceTest, nothingWakesTheProgramWhileNobodyReadsTheList) {
  start(Protocol::foreignToplevels);
  startClient();
  follow();
  EXPECT_EQ(scheduler.pendingTimers(), 0U);
}

TEST_F(WorkspaceTest, withoutHelpOfTheCompositorAClientCannotBeAskedToQuit) {
  start(Protocol::none);
  const auto editor = startClient();
  follow();
  EXPECT_FALSE(workspace->seesActivations());
  EXPECT_FALSE(workspace->seesEveryWindow());
  EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
  EXPECT_EQ(workspace->onScreenWindowOwnerPIDs(), std::nullopt);
  EXPECT_EQ(workspace->answerToTerminate(editor), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace->terminate(editor), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace->terminate(editor + 1), QuitAnswer::gone);
  settle();
  EXPECT_TRUE(isAlive(editor));
}

TEST_F(WorkspaceTest, aPartThatIsNoClientGetsNoSignalWhileAnotherPartMayHaveWindows) {
  start(Protocol::plasma);
  const auto part = startStranger();
  auto& window = compositor->open({.appID = "org.example.Editor", .pid = part});
  follow();
  compositor->close(window);
  settle();
  ASSERT_EQ(running(), OwnerPIDs{part});
  EXPECT_EQ(workspace->answerToTerminate(part), QuitAnswer::asked);

  const auto client = startClient();
  scheduler.advance(16.0);
  running();
  settle();
  ASSERT_EQ(running(), (OwnerPIDs{std::min(part, client), std::max(part, client)}));
  EXPECT_EQ(workspace->answerToTerminate(part), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace->terminate(part), QuitAnswer::cannotBeAsked);
  EXPECT_TRUE(isAlive(part));
}

TEST_F(WorkspaceTest, aClientWithAWindowIsAskedByItsCloseButton) {
  for (const auto protocol : {Protocol::foreignToplevels, Protocol::plasma}) {
    start(protocol);
    const auto editor = startClient();
    compositor->open({.appID = "org.example.Editor", .pid = editor});
    compositor->open({.appID = "org.example.Other", .pid = 1});
    follow();
    EXPECT_EQ(workspace->answerToTerminate(editor), QuitAnswer::asked);
    EXPECT_EQ(workspace->terminate(editor), QuitAnswer::asked);
    settle();
    EXPECT_EQ(compositor->closeRequests, std::vector<std::string>{"org.example.Editor"});
    EXPECT_TRUE(isAlive(editor));
    workspace.reset();
    compositor.reset();
    kill(editor, SIGKILL);
    waitpid(editor, nullptr, 0);
  }
}

TEST_F(WorkspaceTest, ofTwoProcessesThatMayOwnAWindowNeitherIsAsked) {
  start(Protocol::foreignToplevels);
  const auto first = startClient(), second = startClient();
  compositor->open({.appID = "org.example.Editor"});
  follow();
  ASSERT_EQ(running(), (OwnerPIDs{std::min(first, second), std::max(first, second)}));
  EXPECT_EQ(workspace->terminate(first), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace->terminate(second), QuitAnswer::cannotBeAsked);
  settle();
  EXPECT_EQ(compositor->closeRequests, std::vector<std::string>());
  EXPECT_TRUE(isAlive(first) && isAlive(second));
}

TEST_F(WorkspaceTest, aFocusedNativeWindowIsAnActivation) {
  start(Protocol::foreignToplevels);
  const auto editor = startClient();
  auto& window = compositor->open({.appID = "org.example.Editor"});
  follow();
  EXPECT_TRUE(workspace->seesActivations());
  OwnerPIDs activated;
  const auto subscription = workspace->subscribe(
      ports::ApplicationEvent::activated,
      [&activated](const auto& application) { activated.push_back(application.processIdentifier); });
  EXPECT_EQ(workspace->frontmostApplication(), std::nullopt);
  window.isActive = true;
  compositor->update(window);
  settle();
  ASSERT_TRUE(workspace->frontmostApplication());
  EXPECT_EQ(workspace->frontmostApplication()->processIdentifier, editor);
  EXPECT_EQ(activated, OwnerPIDs{editor});
}

TEST_F(WorkspaceTest, aMinimisedWindowIsNotOnTheScreen) {
  start(Protocol::foreignToplevels);
  const auto editor = startClient();
  auto& window = compositor->open({.appID = "org.example.Editor"});
  follow();
  ASSERT_TRUE(workspace->onScreenWindowOwnerPIDs());
  EXPECT_TRUE(std::ranges::count(*workspace->onScreenWindowOwnerPIDs(), editor) > 0);
  window.isMinimised = true;
  compositor->update(window);
  settle();
  EXPECT_EQ(workspace->onScreenWindowOwnerPIDs(), OwnerPIDs{});
}

TEST_F(WorkspaceTest, aVisibleWindowOfAnUnknownProgramProtectsThoseWithoutOne) {
  start(Protocol::foreignToplevels);
  const auto editor = startClient();
  follow();
  EXPECT_EQ(workspace->onScreenWindowOwnerPIDs(), OwnerPIDs{});
  compositor->open({.appID = "some-program"});
  settle();
  EXPECT_EQ(workspace->onScreenWindowOwnerPIDs(), OwnerPIDs{editor});
}

TEST_F(WorkspaceTest, anEndedClientIsGone) {
  start(Protocol::none);
  const auto editor = startClient();
  follow();
  kill(editor, SIGKILL);
  waitpid(editor, nullptr, 0);
  settle();
  EXPECT_EQ(running(), OwnerPIDs{});
  EXPECT_EQ(workspace->terminate(editor), QuitAnswer::gone);
}

}  // namespace
}  // namespace vorli::linuxhost

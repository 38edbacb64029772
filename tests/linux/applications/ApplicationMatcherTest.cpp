#include "linux/applications/ApplicationMatcher.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/linux/RecordedTree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;

// A machine as the matcher reads it, in a folder.
struct ApplicationMatcherTest : testing::Test {
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "vorli-matcher-XXXXXX").string();
    root = fs::canonical(mkdtemp(pattern.data()));
    fs::create_directories(root / "entries");
    places.folders = {root / "entries"};
    places.programPath = {root / "bin"};
  }
  void TearDown() override { fs::remove_all(root); }

  void write(const std::string& path, const std::string& text) {
    fs::create_directories((root / path).parent_path());
    std::ofstream(root / path, std::ios::binary) << text;
  }
  void program(const std::string& path) {
    write(path, "#!/bin/sh\n");
    fs::permissions(root / path, fs::perms::owner_all);
  }
  void entry(const std::string& id, const std::string& exec, const std::string& more = "") {
    write("entries/" + id + ".desktop",
          "[Desktop Entry]\nType=Application\nName=" + id + "\nExec=" + exec + "\n" + more);
  }
  void process(int pid, const std::string& executable, std::uint64_t start = 1000) {
    const std::string folder = "proc/" + std::to_string(pid);
    write(folder + "/stat", RecordedTree::statLine(pid, "x", {.startTicks = start}));
    fs::create_symlink(root / executable, root / folder / "exe");
  }
  std::string match(int pid, const std::vector<DesktopWindow>& windows = {}) {
    const DesktopEntryIndex index(scheduler, places);
    const auto* found = ApplicationMatcher(index, root.string()).match(pid, windows);
    return found ? found->id : "none";
  }

  fakes::ManualScheduler scheduler;
  DesktopEntryIndex::Places places;
  fs::path root;
};

DesktopWindow windowOf(const std::string& instance, const std::string& wmClass) {
  DesktopWindow window;
  window.wmInstance = instance;
  window.wmClass = wmClass;
  return window;
}

const std::string slice = "0::/user.slice/user@1000.service/app.slice/";

TEST_F(ApplicationMatcherTest, theSandboxCountsBeforeAnythingElse) {
  entry("org.example.Boxed", "boxed");
  entry("other", "other");
  program("bin/other");
  process(10, "bin/other");
  write("proc/10/root/.flatpak-info", "[Application]\nname=org.example.Boxed\n");
  EXPECT_EQ(match(10), "org.example.Boxed");
}

TEST_F(ApplicationMatcherTest, aUnitNamesItsOldestProcess) {
  entry("org.example.Terminal", "terminal");
  program("bin/terminal");
  program("bin/shell");
  process(10, "bin/shell", 500);  // started by a wrapper; the program itself is another file
  process(11, "bin/terminal", 900);
  for (const int pid : {10, 11}) {
    write("proc/" + std::to_string(pid) + "/cgroup", slice + "app-gnome-org.example.Terminal-1.scope\n");
  }
  write(
      "sys/fs/cgroup/user.slice/user@1000.service/app.slice/app-gnome-org.example.Terminal-1.scope/"
      "cgroup.procs",
      "10\n11\n");
  EXPECT_EQ(match(10), "org.example.Terminal");
  EXPECT_EQ(match(11), "org.example.Terminal");
}

TEST_F(ApplicationMatcherTest, aShellInATerminalIsNotTheTerminal) {
  entry("org.example.Terminal", "terminal");
  entry("editor", "editor");
  program("bin/terminal");
  program("bin/editor");
  process(10, "bin/terminal", 500);
  process(11, "bin/editor", 900);
  write("proc/11/cgroup", slice + "app-org.example.Terminal-1.scope\n");
  write("sys/fs/cgroup/user.slice/user@1000.service/app.slice/app-org.example.Terminal-1.scope/cgroup.procs",
        "10\n11\n");
  EXPECT_EQ(match(11), "editor");
}

TEST_F(ApplicationMatcherTest, aLaunchRecordMustBeTheProcesssOwnAndNameAnEntryOfTheIndex) {
  entry("viewer", "viewer");
  process(10, "bin/unknown");
  const std::string file = (root / "entries/viewer.desktop").string();
  const auto environment = [&](const std::string& of, const std::string& pid) {
    return "GIO_LAUNCHED_DESKTOP_FILE=" + of + '\0' + "GIO_LAUNCHED_DESKTOP_FILE_PID=" + pid + '\0';
  };
  write("proc/10/environ", environment(file, "10"));
  EXPECT_EQ(match(10), "viewer");
  write("proc/10/environ", environment(file, "9"));
  EXPECT_EQ(match(10), "none");
  write("proc/10/environ", environment("/elsewhere/viewer.desktop", "10"));
  EXPECT_EQ(match(10), "none");
}

TEST_F(ApplicationMatcherTest, theMostReliablePropertyOfAWindowCounts) {
  entry("org.example.Gtk", "a");
  entry("org.kde.viewer", "b");
  entry("by-class", "c", "StartupWMClass=Special\n");
  entry("plain", "d");
  entry("org.example.Dotted", "e");
  process(10, "bin/unknown");
  DesktopWindow window = windowOf("plain", "Special");
  EXPECT_EQ(match(10, {window}), "by-class");
  window.kdeDesktopFile = "/usr/share/applications/org.kde.viewer.desktop";
  EXPECT_EQ(match(10, {window}), "org.kde.viewer");
  window.gtkApplicationID = "org.example.Gtk";
  EXPECT_EQ(match(10, {window}), "org.example.Gtk");
  EXPECT_EQ(match(10, {windowOf("plain", "Plain")}), "plain");
  EXPECT_EQ(match(10, {windowOf("dotted", "Dotted")}), "org.example.Dotted");
  EXPECT_EQ(match(10, {windowOf("", "")}), "none");
}

TEST_F(ApplicationMatcherTest, theExecutableCountsLast) {
  entry("viewer", "viewer");
  entry("script", "python3 " + (root / "opt/tool.py").string());
  program("bin/viewer");
  program("bin/python3");
  program("opt/tool.py");
  process(10, "bin/viewer");
  EXPECT_EQ(match(10), "viewer");
  process(11, "bin/python3");
  write("proc/11/cmdline", std::string("python3\0-u\0", 11) + (root / "opt/tool.py").string() + '\0');
  EXPECT_EQ(match(11), "script");
  process(12, "bin/python3");
  write("proc/12/cmdline", std::string("python3\0", 8));
  EXPECT_EQ(match(12), "none");
}

TEST_F(ApplicationMatcherTest, aScriptIsFoundThroughLinksAndFromItsProcesssFolder) {
  entry("viewer", "viewer");
  entry("tool", "python3 -u " + (root / "opt/tool.py").string());
  program("bin/python3");
  program("share/viewer/viewer.py");
  program("opt/tool.py");
  fs::create_symlink("../share/viewer/viewer.py", root / "bin/viewer");
  process(10, "bin/python3");
  write("proc/10/cmdline", std::string("python3\0", 8) + (root / "bin/viewer").string() + '\0');
  EXPECT_EQ(match(10), "viewer");

  process(11, "bin/python3");
  write("proc/11/cmdline", std::string("python3\0-B\0tool.py\0", 19));
  EXPECT_EQ(match(11), "none");
  fs::create_directory_symlink(root / "opt", root / "proc/11/cwd");
  EXPECT_EQ(match(11), "tool");
}

TEST_F(ApplicationMatcherTest, theBusProxyOfASandboxIsNotItsApplication) {
  entry("org.example.Boxed", "boxed");
  process(10, "usr/bin/xdg-dbus-proxy");
  process(11, "app/bin/boxed");
  for (const int pid : {10, 11}) {
    write("proc/" + std::to_string(pid) + "/root/.flatpak-info", "[Application]\nname=org.example.Boxed\n");
  }
  EXPECT_EQ(match(10), "none");
  EXPECT_EQ(match(11), "org.example.Boxed");
  const DesktopEntryIndex index(scheduler, places);
  EXPECT_EQ(ApplicationMatcher(index, root.string()).sandboxOf(11), "org.example.Boxed");
  EXPECT_EQ(ApplicationMatcher(index, root.string()).sandboxOf(12), "");
}

TEST_F(ApplicationMatcherTest, aLaunchRecordMayNameAnEntryInASubfolder) {
  entry("vendor/tool", "tool");
  process(10, "bin/unknown");
  write("proc/10/environ", "GIO_LAUNCHED_DESKTOP_FILE=" + (root / "entries/vendor/tool.desktop").string() +
                               '\0' + "GIO_LAUNCHED_DESKTOP_FILE_PID=10" + '\0');
  EXPECT_EQ(match(10), "vendor-tool");
}

TEST_F(ApplicationMatcherTest, windowsThatDisagreeLeadToTheEntryWithoutArguments) {
  program("bin/office");
  entry("writer", "office --writer %U", "StartupWMClass=office-writer\n");
  entry("calc", "office --calc %U", "StartupWMClass=office-calc\n");
  process(10, "bin/office");
  const auto writer = windowOf("office", "office-writer"), calc = windowOf("office", "office-calc");
  EXPECT_EQ(match(10, {writer, writer}), "writer");
  EXPECT_EQ(match(10, {writer, calc}), "writer");  // no entry starts the program as such
  entry("startcenter", "office %U");
  EXPECT_EQ(match(10, {writer, calc}), "startcenter");
  EXPECT_EQ(match(10, {calc, windowOf("", "unknown")}), "calc");
}

TEST_F(ApplicationMatcherTest, aWrapperScriptLeadsFromItsProgramToItsEntry) {
  for (const char* name : {"opt/wrapped/run.sh", "opt/wrapped/bin/real", "opt/wrapped/games/deep/game",
                           "lib/real", "bin/sh", "bin/python3"}) {
    program(name);
  }
  entry("wrapped", (root / "opt/wrapped/run.sh").string());
  process(10, "opt/wrapped/bin/real");
  EXPECT_EQ(match(10), "wrapped");
  process(11, "opt/wrapped/games/deep/game");
  EXPECT_EQ(match(11), "none");

  process(20, "bin/sh");
  write("proc/20/cmdline", std::string("sh\0", 3) + (root / "opt/wrapped/run.sh").string() + '\0');
  process(21, "lib/real");
  EXPECT_EQ(match(21), "none");
  write("proc/21/stat", RecordedTree::statLine(21, "x", {.parent = 20}));
  EXPECT_EQ(match(21), "wrapped");
  fs::remove(root / "proc/20/exe");
  fs::create_symlink(root / "bin/python3", root / "proc/20/exe");
  EXPECT_EQ(match(21), "none");  // a script in an interpreter may start other applications
}

TEST_F(ApplicationMatcherTest, neighboursInAFolderOfManyProgramsAreStrangers) {
  const char* before = std::getenv("HOME");
  const std::string home = before ? before : "";
  setenv("HOME", root.c_str(), 1);
  for (const char* name : {".local/bin/tool.sh", ".local/bin/other", "run.sh", "proj/other"}) program(name);
  entry("tool", (root / ".local/bin/tool.sh").string());
  entry("run", (root / "run.sh").string());
  process(10, ".local/bin/other");
  process(11, "proj/other");
  EXPECT_EQ(match(10), "none");
  EXPECT_EQ(match(11), "none");
  setenv("HOME", home.c_str(), 1);
}

TEST_F(ApplicationMatcherTest, aProgramReplacedByAnUpgradeKeepsItsEntry) {
  entry("viewer", "viewer");
  program("bin/viewer");
  fs::create_directories(root / "proc/10");
  fs::create_symlink((root / "bin/viewer").string() + " (deleted)", root / "proc/10/exe");
  EXPECT_EQ(match(10), "viewer");
}

TEST_F(ApplicationMatcherTest, anEndedProcessHasNoApplication) {
  EXPECT_EQ(match(4711), "none");
}

}  // namespace
}  // namespace vorli::linuxhost

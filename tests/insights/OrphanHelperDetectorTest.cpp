#include "insights/OrphanHelperDetector.h"
#include "tests/fakes/Workspace.h"

namespace vorli {
namespace {

struct OrphanHelperDetectorTest : testing::Test {
  ProcessSnapshot& add(std::int32_t pid, const char* path, std::int32_t parentPID = 1) {
    auto& row = rows.emplace_back();
    row.id = pid;
    row.parentPID = parentPID;
    row.name = "process";
    row.displayName = "foo-agent";
    row.executablePath = SharedText(path);
    row.residentBytes = 1000;
    return row;
  }

  void install(const char* path, std::optional<SharedText> identifier, const char* name) {
    workspace.installed[path] = {std::move(identifier), SharedText(name)};
  }

  std::vector<std::int32_t> orphanPIDs(const OrphanHelperDetector& detector) {
    std::vector<std::int32_t> pids;
    for (const auto& row : detector.detect(rows)) pids.push_back(row.pid);
    return pids;
  }

  fakes::Workspace workspace;
  OrphanHelperDetector onMacOS{workspace, ApplicationPaths("/Users/me", ApplicationPathRules::macOS)};
  OrphanHelperDetector onLinux{workspace, ApplicationPaths("/home/me", ApplicationPathRules::linuxDesktop)};
  std::vector<ProcessSnapshot> rows;
};

using PIDs = std::vector<std::int32_t>;
constexpr const char* fooAgent = "/Applications/Foo.app/Contents/MacOS/foo-agent";

TEST_F(OrphanHelperDetectorTest, noRowsGiveNoFindings) {
  EXPECT_EQ(onMacOS.detect({}), std::vector<OrphanHelper>());
}

TEST_F(OrphanHelperDetectorTest, aRowDescribesTheHelperAndItsApplication) {
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  add(42, fooAgent).residentBytes = 123;
  EXPECT_EQ(onMacOS.detect(rows), (std::vector<OrphanHelper>{{.id = 42,
                                                              .pid = 42,
                                                              .name = "foo-agent",
                                                              .parentAppName = SharedText("Foo"),
                                                              .parentBundleID = SharedText("org.example.foo"),
                                                              .executablePath = SharedText(fooAgent),
                                                              .residentBytes = 123}}));
}

TEST_F(OrphanHelperDetectorTest, aHelperOfARunningApplicationIsNoOrphan) {
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  add(42, fooAgent);
  workspace.add(7, SharedText("Bar"), SharedText("org.example.bar"));
  workspace.add(8, SharedText("Nameless"));
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{42});
  workspace.add(9, SharedText("Foo"), SharedText("org.example.foo")).activationPolicy =
      ports::ActivationPolicy::prohibited;
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{});
}

TEST_F(OrphanHelperDetectorTest, anApplicationWithoutAnIdentifierIsNeverKnownToBeAlive) {
  install("/Applications/Foo.app", std::nullopt, "Foo");
  add(42, fooAgent);
  workspace.add(9, SharedText("Foo"));
  ASSERT_EQ(orphanPIDs(onMacOS), PIDs{42});
  EXPECT_FALSE(onMacOS.detect(rows)[0].parentBundleID.has_value());
}

TEST_F(OrphanHelperDetectorTest, onlyProcessesOfTheFirstProcessAreOrphans) {
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  add(41, fooAgent, 0);
  add(42, fooAgent, 1);
  add(43, fooAgent, 2);
  add(44, fooAgent, 42);
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{42});
}

TEST_F(OrphanHelperDetectorTest, aProcessNeedsAPathInAnApplicationThatCanBeOpened) {
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  install("/Applications/Tools/Foo.app", "org.example.foo", "Foo");
  install("/Applications/Foo.app/Contents/Frameworks/Foo Helper.app", "org.example.foo.helper", "Foo Helper");
  install("/Users/me/Applications/Foo.app", "org.example.mine", "Foo");
  add(1, fooAgent).executablePath.reset();
  add(2, "/Applications/Gone.app/Contents/MacOS/gone");
  add(3, "/Applications/Foo.app/Contents/Frameworks/Foo Helper.app/Contents/MacOS/Foo Helper");
  add(4, "/Applications/Tools/Foo.app/Contents/MacOS/foo");
  add(5, "/Applications/Foo.app/Contents/Library/Sparkle/Updater");
  add(6, "/Users/me/Applications/Foo.app/Contents/MacOS/foo");
  add(7, "/opt/foo/bin/foo");
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{6});
}

TEST_F(OrphanHelperDetectorTest, theLargestComesFirstAndEqualsKeepTheirOrder) {
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  for (const auto& [pid, resident] : {std::pair{1, 50u}, {2, 0u}, {3, 70u}, {4, 50u}}) {
    add(pid, fooAgent).residentBytes = resident;
  }
  EXPECT_EQ(orphanPIDs(onMacOS), (PIDs{3, 1, 4, 2}));

  rows.clear();
  PIDs expected;
  for (std::int32_t pid = 100; pid > 0; --pid) {
    add(pid, fooAgent);
    expected.push_back(pid);
  }
  EXPECT_EQ(orphanPIDs(onMacOS), expected);
}

TEST_F(OrphanHelperDetectorTest, theUsersServiceManagerTakesOverOrphansToo) {
  install("/opt/Foo", "org.example.foo", "Foo");
  add(42, "/opt/Foo/foo-agent", 900);
  add(43, "/opt/Foo/foo-agent", 901);
  add(44, "/opt/Foo/foo-agent", 902);
  add(45, "/opt/Foo/foo-agent", 1);
  add(900, "/usr/lib/systemd/systemd").name = "systemd";  // listed after the orphans that it has adopted
  add(901, "/usr/bin/lxqt-session").name = "lxqt-session";
  add(902, "/usr/bin/bash").name = "systemd-run";
  EXPECT_EQ(orphanPIDs(onLinux), (PIDs{42, 43, 45}));

  rows.clear();
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  add(42, fooAgent, 900);
  add(900, "/sbin/launchd").name = "systemd";
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{});
}

TEST_F(OrphanHelperDetectorTest, theInnermostFolderThatHoldsAnApplicationIsTheParent) {
  install("/opt/google/chrome", "google-chrome", "Google Chrome");
  install("/opt/google", "google-earth", "Google Earth");
  add(42, "/opt/google/chrome/crashpad/handler");
  add(43, "/opt/google/earth-agent");
  const auto orphans = onLinux.detect(rows);
  ASSERT_EQ(orphans.size(), 2u);
  EXPECT_EQ(orphans[0].parentAppName, "Google Chrome");
  EXPECT_EQ(orphans[1].parentAppName, "Google Earth");

  workspace.add(7, SharedText("Google Earth"), SharedText("google-earth"));
  EXPECT_EQ(orphanPIDs(onLinux), PIDs{42});
}

TEST_F(OrphanHelperDetectorTest, everyKindOfApplicationsFolderCounts) {
  const std::pair<const char*, const char*> cases[] = {
      {"/opt/Foo", "/opt/Foo/lib/agent"},
      {"/snap/foo", "/snap/foo/12/bin/agent"},
      {"/tmp/.mount_FooAbCdEf", "/tmp/.mount_FooAbCdEf/usr/bin/agent"},
      {"/home/me/.local/share/Foo", "/home/me/.local/share/Foo/agent"},
      {"/home/me/Applications/Foo", "/home/me/Applications/Foo/agent"},
  };
  for (const auto& [application, program] : cases) {
    rows.clear();
    workspace.installed.clear();
    install(application, "org.example.foo", "Foo");
    add(42, program);
    EXPECT_EQ(orphanPIDs(onLinux), PIDs{42}) << program;
  }
}

TEST_F(OrphanHelperDetectorTest, anApplicationsOwnProgramIsNotItsHelper) {
  install("/opt/Foo", "org.example.foo", "Foo");
  install("/opt/Foo/foo", "org.example.foo", "Foo");
  add(42, "/opt/Foo/foo");
  add(43, "/opt/Foo/foo-agent");
  EXPECT_EQ(orphanPIDs(onLinux), PIDs{43});

  rows.clear();
  install("/Applications/Foo.app", "org.example.foo", "Foo");
  install(fooAgent, "org.example.foo", "Foo");
  add(42, fooAgent);
  EXPECT_EQ(orphanPIDs(onMacOS), PIDs{42});
}

TEST_F(OrphanHelperDetectorTest, onlyOrphansInAnApplicationsFolderCostALookAtTheDisk) {
  for (std::int32_t pid = 2; pid < 2000; ++pid) add(pid, "/opt/Foo/foo", 1 + pid % 7);
  for (auto& row : rows) {
    if (row.parentPID == 1) row.executablePath = SharedText("/usr/bin/foo");
  }
  EXPECT_EQ(orphanPIDs(onLinux), PIDs{});
  EXPECT_TRUE(workspace.looksAtPaths.empty());
  EXPECT_EQ(workspace.listings, 0);
}

}  // namespace
}  // namespace vorli

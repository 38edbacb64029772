#include "insights/CulpritFormatter.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/Workspace.h"

#include <limits>

namespace vorli {
namespace {

using ports::ActivationPolicy;
using CulpritData = CulpritFormatter::CulpritData;
using Name = std::optional<std::string>;

constexpr std::uint64_t GB = 1'000'000'000;

struct CulpritFormatterTest : testing::Test {
  ProcessSnapshot& add(const char* name, const char* path = nullptr, std::uint64_t residentBytes = GB) {
    auto& row = rows.emplace_back();
    row.id = static_cast<std::int32_t>(rows.size());
    row.name = name;
    row.displayName = name;
    if (path) row.executablePath = SharedText(path);
    row.residentBytes = residentBytes;
    return row;
  }

  ProcessSnapshot& addApplication(const char* displayName, std::uint64_t residentBytes = GB) {
    auto& row = add("process", nullptr, residentBytes);
    row.displayName = displayName;
    row.activationPolicy = ActivationPolicy::regular;
    return row;
  }

  std::vector<std::string> names(const CulpritFormatter& formatter) {
    const auto data = formatter.culpritData(rows, RingState::warming);
    return data ? data->names : std::vector<std::string>();
  }

  /// The name of a process of which only this is known.
  static ProcessSnapshot process(const char* name, const char* path) {
    ProcessSnapshot row;
    row.name = name;
    row.displayName = name;
    if (path) row.executablePath = SharedText(path);
    return row;
  }

  fakes::Workspace workspace;
  CulpritFormatter onMacOS{workspace, ApplicationPaths("/Users/me", ApplicationPathRules::macOS),
                           SystemProcessNames::macOS};
  CulpritFormatter onLinux{workspace, ApplicationPaths("/home/me", ApplicationPathRules::linuxDesktop),
                           SystemProcessNames::linuxDesktop};
  std::vector<ProcessSnapshot> rows;
};

using Names = std::vector<std::string>;

TEST_F(CulpritFormatterTest, inTheHealthyStateNobodyIsNamed) {
  add("Notes", "/Applications/Notes.app/Contents/MacOS/Notes", 900 * GB);
  EXPECT_EQ(onMacOS.culpritData(rows, RingState::healthy), std::nullopt);
  EXPECT_TRUE(onMacOS.culpritData(rows, RingState::warming).has_value());
  EXPECT_TRUE(onMacOS.culpritData(rows, RingState::critical).has_value());
}

TEST_F(CulpritFormatterTest, withoutANameThereIsNoSentence) {
  EXPECT_EQ(onMacOS.culpritData({}, RingState::critical), std::nullopt);
  add("com.example.agent");
  EXPECT_EQ(onMacOS.culpritData(rows, RingState::critical), std::nullopt);
}

TEST_F(CulpritFormatterTest, oneNameIsUsingTheMost) {
  add("Notes", "/Applications/Notes.app/Contents/MacOS/Notes");
  EXPECT_EQ(onMacOS.culpritData(rows, RingState::warming),
            (CulpritData{{"Notes"}, "is", "[**Notes**](vorli-quit://Notes) is using the most right now."}));
}

TEST_F(CulpritFormatterTest, onlyTheTwoLargestOfMoreNamesAreShown) {
  addApplication("Small", 2 * GB);
  addApplication("Visual Studio Code", 3 * GB);
  addApplication("Café/Bar", 9 * GB);  // no name
  addApplication("Big", 5 * GB);
  EXPECT_EQ(onMacOS.culpritData(rows, RingState::critical),
            (CulpritData{{"Big", "Visual Studio Code"},
                         "are",
                         "[**Big**](vorli-quit://Big) and "
                         "[**Visual Studio Code**](vorli-quit://Visual%20Studio%20Code) "
                         "are using the most right now."}));
}

TEST_F(CulpritFormatterTest, aNameGathersAllProcessesOfItsApplication) {
  constexpr const char* helpers =
      "/Applications/Google Chrome.app/Contents/Frameworks/Google Chrome Helper.app/Contents/MacOS/x";
  for (const std::uint64_t size : {1, 2, 3}) add("Google Chrome He", helpers, size * GB);
  addApplication("Notes", 6 * GB - 1);
  addApplication("Mail", 5 * GB);
  EXPECT_EQ(names(onMacOS), (Names{"Chrome", "Notes"}));
  rows[3].residentBytes = 6 * GB + 1;
  EXPECT_EQ(names(onMacOS), (Names{"Notes", "Chrome"}));
}

TEST_F(CulpritFormatterTest, processesOfTheSystemAreNotBlamed) {
  for (const char* name : {"kernel_task",
                           "WindowServer",
                           "loginwindow",
                           "launchd",
                           "logd",
                           "fseventsd",
                           "coreaudiod",
                           "mds_stores",
                           "mds",
                           "syslogd",
                           "Spotlight",
                           "powerd",
                           "configd",
                           "trustd",
                           "nsurlsessiond",
                           "cloudd",
                           "bird",
                           "softwareupdated",
                           "rapportd",
                           "warmd",
                           "appleh13camerad",
                           "mediaanalysisd",
                           "knowledge-agent",
                           "duetexpertd",
                           "Vorli",
                           "com.kv.vorli.helper"}) {
    auto row = process(name, "/Applications/Foo.app/Contents/MacOS/x");
    row.activationPolicy = ActivationPolicy::regular;
    EXPECT_EQ(onMacOS.applicationName(row), std::nullopt) << name;
  }
  EXPECT_EQ(SystemProcessNames::macOS.names.size(), 27u);
  EXPECT_TRUE(SystemProcessNames::macOS.contains("useventagent"));
  EXPECT_FALSE(SystemProcessNames::macOS.contains("mds2"));
  EXPECT_FALSE(SystemProcessNames::macOS.contains("systemd"));
}

TEST_F(CulpritFormatterTest, theOtherSystemHasItsOwnProcesses) {
  for (const char* name : {"systemd",         "systemd-journal", "dbus-daemon",     "Xorg",
                           "Xwayland",        "gnome-shell",     "plasmashell",     "kwin_x11",
                           "kwin_wayland",    "xfwm4",           "xfce4-panel",     "xfdesktop",
                           "pulseaudio",      "pipewire",        "pipewire-pulse",  "wireplumber",
                           "at-spi-bus-laun", "at-spi2-registr", "gvfsd",           "gvfsd-fuse",
                           "xdg-desktop-por", "NetworkManager",  "polkitd",         "udisksd",
                           "snapd",           "packagekitd",     "tracker-miner-f", "baloo_file",
                           "baloo_file_extr", "vorli",           "vorli-helper"}) {
    auto row = process(name, nullptr);
    row.displayName = "Shell";
    row.activationPolicy = ActivationPolicy::accessory;
    EXPECT_EQ(onLinux.applicationName(row), std::nullopt) << name;
  }
  for (const char* name :
       {"firefox", "evolution", "gnome-terminal-", "xfce4-terminal", "trackerless", "system", "gjs"}) {
    EXPECT_FALSE(SystemProcessNames::linuxDesktop.contains(name)) << name;
  }
}

TEST_F(CulpritFormatterTest, thePathOfABundleNamesTheApplication) {
  const std::pair<const char*, Name> cases[] = {
      {"/Applications/Notes.app/Contents/MacOS/Notes", "Notes"},
      {"/System/Applications/Mail.app/Contents/MacOS/Mail", "Mail"},
      {"/Users/me/Applications/Foo.app/Contents/MacOS/foo", "Foo"},
      {"/Applications/Utilities/Terminal.app/Contents/MacOS/Terminal", "Terminal"},
      {"/Applications/Google Chrome.app/Contents/Frameworks/Google Chrome Helper.app/x", "Chrome"},
      {"/Applications/my tool.app/Contents/MacOS/x", "My tool"},
      {"/Applications/com.example.tool.app/Contents/MacOS/x", std::nullopt},
      {"/Users/you/Applications/Foo.app/Contents/MacOS/foo", std::nullopt},
      {"/Library/Foo.app/Contents/MacOS/foo", std::nullopt},
      {"/opt/foo/foo", std::nullopt},
      {nullptr, std::nullopt},
  };
  for (const auto& [path, name] : cases) {
    EXPECT_EQ(onMacOS.applicationName(process("x", path)), name) << (path ? path : "none");
  }
}

TEST_F(CulpritFormatterTest, thePathCountsBeforeTheDisplayName) {
  auto row = process("x", "/Applications/Foo.app/Contents/MacOS/x");
  row.displayName = "Other";
  row.activationPolicy = ActivationPolicy::regular;
  EXPECT_EQ(onMacOS.applicationName(row), "Foo");
  row.executablePath = SharedText("/Applications/com.example.foo.app/Contents/MacOS/x");
  EXPECT_EQ(onMacOS.applicationName(row), "Other");  // no name in the path
}

TEST_F(CulpritFormatterTest, anApplicationsDisplayNameIsCleaned) {
  const std::pair<const char*, Name> cases[] = {
      {"Worker (Notes)", "Notes"}, {"my tool", "My tool"},       {"Slack Helper (Renderer)", "Slack"},
      {"Google Chrome", "Chrome"}, {"pid 123", std::nullopt},    {"com.example.notes", std::nullopt},
      {"a/b", std::nullopt},       {"n\uFFFDtes", std::nullopt}, {"", std::nullopt},
  };
  for (const auto policy : {ActivationPolicy::regular, ActivationPolicy::accessory}) {
    for (const auto& [displayName, name] : cases) {
      auto row = process("x", nullptr);
      row.displayName = displayName;
      row.activationPolicy = policy;
      EXPECT_EQ(onMacOS.applicationName(row), name) << displayName;
    }
  }
}

TEST_F(CulpritFormatterTest, aProcessThatIsNoShownApplicationHasNoDisplayName) {
  auto row = process("worker", "/usr/libexec/worker");
  row.displayName = "Worker";
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
  row.activationPolicy = ActivationPolicy::prohibited;
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
  row.activationPolicy = ActivationPolicy::accessory;
  EXPECT_EQ(onMacOS.applicationName(row), "Worker");
}

TEST_F(CulpritFormatterTest, theFirstRunningApplicationWithTheIdentifierLendsItsName) {
  auto row = process("x", nullptr);
  row.bundleIdentifier = SharedText("org.example.notes");
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);  // none runs

  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("notes"), SharedText("org.example.notes"));
  workspace.add(3, SharedText("Second"), SharedText("org.example.notes"));
  EXPECT_EQ(onMacOS.applicationName(row), "Notes");
  row.displayName = "pid 123";
  row.activationPolicy = ActivationPolicy::regular;
  EXPECT_EQ(onMacOS.applicationName(row), "Notes");

  auto& notes = workspace.applications[1];
  notes.activationPolicy = ActivationPolicy::accessory;
  EXPECT_EQ(onMacOS.applicationName(row), "Notes");
  notes.activationPolicy = ActivationPolicy::prohibited;  // the second is not asked
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
  notes.activationPolicy = ActivationPolicy::regular;
  notes.localizedName = SharedText("org.example.notes");
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
  notes.localizedName.reset();
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
}

TEST_F(CulpritFormatterTest, whereFoldersAreApplicationsThePathLeadsToTheOneThatRuns) {
  workspace.installed["/usr/lib/firefox"] = {SharedText("firefox"), SharedText("Firefox")};
  const auto row = process("Isolated Web Co", "/usr/lib/firefox/firefox");
  EXPECT_EQ(onLinux.applicationName(row), std::nullopt);  // installed, but not running
  workspace.add(7, SharedText("Firefox Web Browser"), SharedText("firefox"));
  EXPECT_EQ(onLinux.applicationName(row), "Firefox Web Browser");
  EXPECT_EQ(onMacOS.applicationName(row), std::nullopt);
}

TEST_F(CulpritFormatterTest, theProgramItselfAndItsInnermostFolderCountFirst) {
  workspace.add(7, SharedText("Google Chrome"), SharedText("google-chrome"));
  workspace.add(8, SharedText("Google Earth"), SharedText("google-earth"));
  workspace.add(9, SharedText("Viewer"), SharedText("org.example.Viewer"));
  workspace.installed["/opt/google/chrome"] = {SharedText("google-chrome"), SharedText("Google Chrome")};
  workspace.installed["/opt/google"] = {SharedText("google-earth"), SharedText("Google Earth")};
  workspace.installed["/home/me/tools/viewer"] = {SharedText("org.example.Viewer"), SharedText("Viewer")};
  const std::pair<const char*, Name> cases[] = {
      {"/opt/google/chrome/chrome", "Chrome"}, {"/opt/google/chrome/lib/handler", "Chrome"},
      {"/opt/google/agent", "Earth"},          {"/home/me/tools/viewer", "Viewer"},
      {"/home/me/tools/other", std::nullopt},  {"/usr/bin/python3", std::nullopt},
  };
  for (const auto& [path, name] : cases) EXPECT_EQ(onLinux.applicationName(process("x", path)), name) << path;

  workspace.remove(7);  // the folder is still Chrome's, not Earth's
  EXPECT_EQ(onLinux.applicationName(process("x", "/opt/google/chrome/chrome")), std::nullopt);
  workspace.installed["/opt/nameless"] = {std::nullopt, SharedText("Nameless")};
  EXPECT_EQ(onLinux.applicationName(process("x", "/opt/nameless/x")), std::nullopt);
}

TEST_F(CulpritFormatterTest, whereFoldersAreApplicationsTheOwnRecordCountsBeforeThePath) {
  workspace.add(7, SharedText("XTerm"), SharedText("debian-xterm"));
  workspace.add(8, SharedText("UXTerm"), SharedText("debian-uxterm"));
  workspace.installed["/usr/bin/xterm"] = {SharedText("debian-xterm"), SharedText("XTerm")};
  auto row = process("xterm", "/usr/bin/xterm");
  EXPECT_EQ(onLinux.applicationName(row), "XTerm");  // no record: only the path is left
  row.displayName = "UXTerm";
  row.bundleIdentifier = SharedText("debian-uxterm");
  row.activationPolicy = ActivationPolicy::regular;
  EXPECT_EQ(onLinux.applicationName(row), "UXTerm");
  row.activationPolicy = ActivationPolicy::prohibited;
  EXPECT_EQ(onLinux.applicationName(row), std::nullopt);
}

TEST_F(CulpritFormatterTest, aHelperIsNamedAfterTheApplicationThatItWorksFor) {
  workspace.add(7, SharedText("Browser"), SharedText("browser"));
  workspace.add(8, SharedText("Mail Webapp"), SharedText("webapp-mail"));
  workspace.installed["/opt/browser/browser"] = {SharedText("browser"), SharedText("Browser")};
  workspace.helped = {{21, 7}, {22, 8}, {23, 99}};
  auto row = process("renderer", "/opt/browser/browser");
  const std::pair<int, Name> cases[] = {
      {21, "Browser"}, {22, "Mail Webapp"}, {23, std::nullopt}, {24, "Browser"}};
  for (const auto& [pid, name] : cases) {
    row.id = pid;
    EXPECT_EQ(onLinux.applicationName(row), name) << pid;
  }
  row.executablePath.reset();
  row.id = 22;
  EXPECT_EQ(onLinux.applicationName(row), "Mail Webapp");
}

TEST_F(CulpritFormatterTest, aProgramWithoutAnEntryIsNamedByItsWindowAndNotByAnOuterFolder) {
  workspace.add(7, SharedText("Launcher"), SharedText("org.example.Launcher"));
  workspace.installed["/home/me/.local/share/launcher"] = {SharedText("org.example.Launcher"),
                                                           SharedText("Launcher")};
  auto row = process("game", "/home/me/.local/share/launcher/common/game/game");
  EXPECT_EQ(onLinux.applicationName(row), "Launcher");
  row.displayName = "moonlight-quest";
  row.activationPolicy = ActivationPolicy::regular;
  EXPECT_EQ(onLinux.applicationName(row), "Moonlight-quest");
  row.displayName = "org.example.game";  // an identifier is not a name
  EXPECT_EQ(onLinux.applicationName(row), std::nullopt);
}

TEST_F(CulpritFormatterTest, aSkippedProcessLeavesTheReasonInTheLog) {
  workspace.add(7, SharedText("Hidden"), SharedText("hidden")).activationPolicy =
      ActivationPolicy::prohibited;
  workspace.add(8, std::nullopt, SharedText("nameless"));
  workspace.installed["/opt/ended"] = {SharedText("ended"), SharedText("Ended")};
  workspace.installed["/opt/hidden"] = {SharedText("hidden"), SharedText("Hidden")};
  workspace.installed["/opt/nameless"] = {SharedText("nameless"), SharedText("Nameless")};
  add("systemd");
  add("worker", "/usr/bin/worker");
  add("ended", "/opt/ended/bin/ended");
  add("hidden", "/opt/hidden/hidden");
  add("nameless", "/opt/nameless/nameless");
  const fakes::CapturedLog log;
  EXPECT_EQ(names(onLinux), Names{});
  using Line = fakes::CapturedLog::Line;
  EXPECT_EQ(log.lines(),
            (std::vector<Line>{
                {LogLevel::debug, "culprits", "skipped systemd: part of the system"},
                {LogLevel::debug, "culprits", "skipped worker: belongs to no application"},
                {LogLevel::debug, "culprits", "skipped ended: its application is not running"},
                {LogLevel::debug, "culprits", "skipped hidden: its application is never shown"},
                {LogLevel::debug, "culprits", "skipped nameless: its application has no name to show"},
                {LogLevel::debug, "culprits", "nobody to name among 5 processes"}}));
}

TEST_F(CulpritFormatterTest, rawNamesNeverReachTheUser) {
  add("com.apple.WebKit.WebContent", "/System/Library/Frameworks/WebKit.framework/x", 9 * GB);
  add("node", "/opt/homebrew/bin/node", 8 * GB);
  add("pid 77", nullptr, 7 * GB).displayName = "";
  auto& agent = addApplication("io.example.agent", 6 * GB);
  agent.bundleIdentifier = SharedText("io.example.agent");
  workspace.add(agent.id, SharedText("io.example.agent"), SharedText("io.example.agent"));
  EXPECT_EQ(names(onMacOS), Names{});
  EXPECT_EQ(names(onLinux), Names{});
}

using CulpritFormatterDeathTest = CulpritFormatterTest;

TEST_F(CulpritFormatterDeathTest, aTotalThatOverflowsStopsTheProgram) {
  addApplication("Notes", std::numeric_limits<std::uint64_t>::max());
  addApplication("Notes", 0);
  EXPECT_EQ(names(onMacOS), Names{"Notes"});
  rows[1].residentBytes = 1;
  EXPECT_DEATH(names(onMacOS), "broken invariant");
}

}  // namespace
}  // namespace vorli

#include "formats/DesktopEntry.h"
#include "insights/ApplicationName.h"
#include "insights/CulpritFormatter.h"
#include "polish/AppQuitter.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/Workspace.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace vorli {
namespace {

using ports::ActivationPolicy;
using ports::QuitAnswer;

struct AppQuitterTest : testing::Test {
  AppQuitterTest() { self.info["CFBundleIdentifier"] = "com.kv.vorli"; }

  QuitAnswer quit(std::string_view name, const ApplicationPathRules& rules = ApplicationPathRules::macOS) {
    return quitByName(workspace, self, name, rules);
  }
  /// Whether the name reaches this application when it is the only one.
  bool reaches(std::string_view name, ports::RunningApplication application,
               const ApplicationPathRules& rules = ApplicationPathRules::macOS) {
    workspace.applications = {std::move(application)};
    workspace.terminated.clear();
    return quit(name, rules) == QuitAnswer::asked;
  }
  void quitHidden() { quitHiddenApps(workspace, self); }

  fakes::CapturedLog log;
  fakes::ApplicationBundle self;
  fakes::Workspace workspace;
};

using PIDs = std::vector<std::int32_t>;

TEST_F(AppQuitterTest, asksTheFirstApplicationOfThatName) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.add(3, SharedText("Notes"), SharedText("org.example.notes"));
  EXPECT_EQ(quit("notes"), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, PIDs{2});
  EXPECT_EQ(
      log.lines(),
      (std::vector<fakes::CapturedLog::Line>{{LogLevel::standard, "quitter", "terminating Notes (pid 2)"}}));
}

TEST_F(AppQuitterTest, reportsThatTheApplicationCouldNotBeAsked) {
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.refusing = {2};
  EXPECT_EQ(quit("Notes"), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(workspace.terminated, PIDs{2});
}

TEST_F(AppQuitterTest, aNameWithoutAMatchIsLogged) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  EXPECT_EQ(quit("Notes & More"), QuitAnswer::gone);
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(log.messages(), std::vector<std::string>{"quit(byName:) no match for Notes & More"});
}

TEST_F(AppQuitterTest, theNameIsComparedWholeWithoutRegardToCase) {
  const ports::RunningApplication notes{.processIdentifier = 1,
                                        .localizedName = SharedText("Élan Notes"),
                                        .bundleIdentifier = SharedText("org.example.notes")};
  EXPECT_TRUE(reaches("élan NOTES", notes));
  EXPECT_FALSE(reaches("Élan", notes));
  EXPECT_FALSE(reaches("Notes", notes));
  EXPECT_FALSE(reaches("Élan Notes 2", notes));
  EXPECT_FALSE(reaches("", notes));
}

TEST_F(AppQuitterTest, theMakersNameMayBeMissing) {
  const ports::RunningApplication chrome{.processIdentifier = 1,
                                         .localizedName = SharedText("Google Chrome"),
                                         .bundleIdentifier = SharedText("com.google.Chrome")};
  EXPECT_TRUE(reaches("Chrome", chrome));
  EXPECT_TRUE(reaches("google chrome", chrome));
  EXPECT_FALSE(reaches("GoogleChrome", chrome));

  ports::RunningApplication twice = chrome;
  twice.localizedName = SharedText("Google Sheets by Google Docs");
  EXPECT_TRUE(reaches("sheets by docs", twice));
  EXPECT_FALSE(reaches("sheets by google docs", twice));
}

TEST_F(AppQuitterTest, theNameOfTheBundlesFileCountsWithoutItsLastExtension) {
  ports::RunningApplication application{.processIdentifier = 1,
                                        .bundleIdentifier = SharedText("org.example.app"),
                                        .bundleURL = SharedText("/Applications/Foo.Bar.app")};
  EXPECT_TRUE(reaches("foo.bar", application));
  EXPECT_FALSE(reaches("foo", application));
  EXPECT_FALSE(reaches("foo.bar.app", application));
  EXPECT_EQ(log.messages().front(), "terminating ? (pid 1)");

  application.bundleURL = SharedText("/Applications/Foo.app/");
  EXPECT_TRUE(reaches("Foo", application));
  application.bundleURL = SharedText("/usr/share/applications/org.example.Viewer.desktop");
  EXPECT_TRUE(reaches("org.example.viewer", application));
  application.bundleURL = SharedText("/Applications/plain");
  EXPECT_TRUE(reaches("plain", application));
  application.localizedName = SharedText("Something else");
  EXPECT_TRUE(reaches("plain", application));
  application.bundleURL.reset();
  EXPECT_FALSE(reaches("plain", application));
}

TEST_F(AppQuitterTest, theProgramsOwnNameNeverQuitsTheProgram) {
  workspace.add(1, SharedText("Vorli"), SharedText("com.kv.vorli"));
  EXPECT_EQ(quit("Vorli"), QuitAnswer::gone);
  workspace.add(2, SharedText("Vorli"), SharedText("org.example.other"));
  EXPECT_EQ(quit("Vorli"), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, PIDs{2});
}

TEST_F(AppQuitterTest, anApplicationWithoutAnIdentifierIsTakenForAProgramWithoutOne) {
  workspace.add(1, SharedText("Notes"));
  EXPECT_EQ(quit("Notes"), QuitAnswer::asked);
  self.info.erase("CFBundleIdentifier");
  EXPECT_EQ(quit("Notes"), QuitAnswer::gone);
  quitHidden();
  EXPECT_EQ(workspace.terminated, PIDs{1});
}

TEST_F(AppQuitterTest, theNextOfTheSameNameIsAskedIfTheFirstCannotBe) {
  workspace.add(1, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.add(2, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(3, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.add(4, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.refusing = {1};
  EXPECT_EQ(answerToQuitByName(workspace, self, "Notes"), QuitAnswer::asked);
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(quit("Notes"), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, (PIDs{1, 3}));

  workspace.refusing = {1, 3, 4};
  EXPECT_EQ(answerToQuitByName(workspace, self, "Notes"), QuitAnswer::cannotBeAsked);
  EXPECT_EQ(answerToQuitByName(workspace, self, "Elsewhere"), QuitAnswer::gone);
  EXPECT_EQ(answerToQuitByName(workspace, self, "Vorli"), QuitAnswer::gone);
}

TEST_F(AppQuitterTest, whereFoldersAreApplicationsTheShownNameCountsBeforeTheOthers) {
  const auto& rules = ApplicationPathRules::linuxDesktop;
  workspace.add(1, SharedText("Web Browser"), SharedText("chrome")).bundleURL =
      SharedText("/entries/chrome.desktop");
  workspace.add(2, SharedText("Google Chrome"), SharedText("google-chrome"));
  EXPECT_EQ(quit("Chrome", rules), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, PIDs{2});
  EXPECT_EQ(quit("Chrome", ApplicationPathRules::macOS), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, (PIDs{2, 1}));
  workspace.remove(2);
  EXPECT_EQ(quit("Chrome", rules), QuitAnswer::asked);
  EXPECT_EQ(workspace.terminated, (PIDs{2, 1, 1}));
}

// Names from the entries of real packages, and some odd ones, one on each line.
std::vector<std::string> realNames() {
  std::vector<std::string> names;
  std::ifstream file(VORLI_TEST_DATA "/application_names.txt");
  for (std::string line; std::getline(file, line);) names.push_back(line);
  return names;
}

// Entries of the applications on this machine, which may have none.
std::vector<formats::DesktopEntry> installedEntries() {
  std::vector<formats::DesktopEntry> entries;
  std::error_code error;
  for (const auto& file : std::filesystem::directory_iterator("/usr/share/applications", error)) {
    if (file.path().extension() != ".desktop") continue;
    std::ifstream stream(file.path(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    auto entry = formats::parseDesktopEntry(text, {});
    if (!entry || !entry->isVisible()) continue;
    entry->id = file.path().stem().string();
    entry->path = file.path().string();
    entries.push_back(*std::move(entry));
  }
  return entries;
}

TEST_F(AppQuitterTest, everyNameThatIsShownReachesAnApplicationOfThatName) {
  const auto& rules = ApplicationPathRules::linuxDesktop;
  const CulpritFormatter formatter(workspace, ApplicationPaths("/home/me", rules),
                                   SystemProcessNames::linuxDesktop);
  std::int32_t pid = 100;
  for (const auto& name : realNames()) {
    const std::string identifier = "entry-" + std::to_string(++pid);
    workspace.add(pid, SharedText(name), SharedText(identifier)).bundleURL =
        SharedText("/usr/share/applications/" + identifier + ".desktop");
  }
  ASSERT_GT(workspace.applications.size(), 300u);
  for (const auto& entry : installedEntries()) {
    workspace.add(++pid, SharedText(entry.name), SharedText(entry.id)).bundleURL = SharedText(entry.path);
  }
  const auto applications = workspace.applications;
  for (const auto& application : applications) {
    ProcessSnapshot row;
    row.name = "process";
    row.displayName = std::string(application.localizedName->view());
    row.bundleIdentifier = application.bundleIdentifier;
    row.activationPolicy = application.activationPolicy;
    const auto shown = formatter.applicationName(row);
    ASSERT_TRUE(shown) << *application.localizedName;

    workspace.terminated.clear();
    EXPECT_EQ(quit(*shown, rules), QuitAnswer::asked) << *shown;
    ASSERT_EQ(workspace.terminated.size(), 1u);
    const auto* reached = workspace.withProcessIdentifier(workspace.terminated.front());
    EXPECT_EQ(shownApplicationName(*reached, rules.kind), shown);
    EXPECT_TRUE(reaches(*shown, application, rules)) << *shown;
    workspace.applications = applications;
  }
}

TEST_F(AppQuitterTest, hiddenMeansARegularApplicationWithoutAWindowOnScreen) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.add(3, std::nullopt, SharedText("org.example.nameless"));
  workspace.add(4, SharedText("Tray"), SharedText("org.example.tray")).activationPolicy =
      ActivationPolicy::accessory;
  workspace.add(5, SharedText("Agent"), SharedText("org.example.agent")).activationPolicy =
      ActivationPolicy::prohibited;
  workspace.add(6, SharedText("Vorli"), SharedText("com.kv.vorli"));
  workspace.windowOwners = PIDs{77, 1, 1};
  quitHidden();
  EXPECT_EQ(workspace.terminated, (PIDs{2, 3}));
  EXPECT_EQ(workspace.windowLooks, 1);
  EXPECT_EQ(log.lines(),
            (std::vector<fakes::CapturedLog::Line>{{LogLevel::standard, "quitter", "hidden quit: Notes"},
                                                   {LogLevel::standard, "quitter", "hidden quit: ?"}}));
}

TEST_F(AppQuitterTest, anEmptyScreenProtectsNobodyButTheProgramItself) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Vorli"), SharedText("com.kv.vorli"));
  workspace.add(3, SharedText("Files"), SharedText("org.example.files"));
  workspace.windowOwners = PIDs{};
  quitHidden();
  EXPECT_EQ(workspace.terminated, (PIDs{1, 3}));
}

TEST_F(AppQuitterTest, whereWindowsCannotBeSeenNoApplicationIsHidden) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.windowOwners.reset();
  quitHidden();
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(log.messages(),
            std::vector<std::string>{"hidden quit: windows cannot be seen here, nobody is asked"});
}

TEST_F(AppQuitterTest, anApplicationThatCannotBeAskedDoesNotStopTheSweep) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.windowOwners = PIDs{77};
  workspace.refusing = {1};
  quitHidden();
  EXPECT_EQ(workspace.terminated, (PIDs{1, 2}));
}

}  // namespace
}  // namespace vorli

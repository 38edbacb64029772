#include "polish/AppQuitter.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/Workspace.h"

namespace vorli {
namespace {

using ports::ActivationPolicy;

struct AppQuitterTest : testing::Test {
  AppQuitterTest() { self.info["CFBundleIdentifier"] = "com.kv.vorli"; }

  bool quit(std::string_view name) { return quitByName(workspace, self, name); }
  /// Whether the name reaches this application when it is the only one.
  bool reaches(std::string_view name, ports::RunningApplication application) {
    workspace.applications = {std::move(application)};
    workspace.terminated.clear();
    return quit(name);
  }
  void quitHidden() { quitHiddenApps(workspace, self); }

  fakes::CapturedLog log;
  fakes::ApplicationBundle self;
  fakes::Workspace workspace;
};

using PIDs = std::vector<std::int32_t>;

TEST_F(AppQuitterTest, asksTheFirstThatBearsTheName) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.add(3, SharedText("Notes"), SharedText("org.example.notes"));
  EXPECT_TRUE(quit("notes"));
  EXPECT_EQ(workspace.terminated, PIDs{2});
  EXPECT_EQ(
      log.lines(),
      (std::vector<fakes::CapturedLog::Line>{{LogLevel::standard, "quitter", "terminating Notes (pid 2)"}}));
}

TEST_F(AppQuitterTest, tellsThatTheApplicationCouldNotBeAsked) {
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.refusing = {2};
  EXPECT_FALSE(quit("Notes"));
  EXPECT_EQ(workspace.terminated, PIDs{2});
}

TEST_F(AppQuitterTest, aNameWithoutAMatchIsALogLine) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  EXPECT_FALSE(quit("Notes & More"));
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
  EXPECT_FALSE(quit("Vorli"));
  workspace.add(2, SharedText("Vorli"), SharedText("org.example.other"));
  EXPECT_TRUE(quit("Vorli"));
  EXPECT_EQ(workspace.terminated, PIDs{2});
}

TEST_F(AppQuitterTest, anApplicationWithoutAnIdentifierIsTakenForAProgramWithoutOne) {
  workspace.add(1, SharedText("Notes"));
  EXPECT_TRUE(quit("Notes"));
  self.info.erase("CFBundleIdentifier");
  EXPECT_FALSE(quit("Notes"));
  quitHidden();
  EXPECT_EQ(workspace.terminated, PIDs{1});
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

TEST_F(AppQuitterTest, whereWindowsCannotBeSeenNobodyIsHidden) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.windowOwners.reset();
  quitHidden();
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(log.messages(),
            std::vector<std::string>{"hidden quit: windows cannot be seen here, nobody is asked"});
}

TEST_F(AppQuitterTest, oneThatCannotBeAskedDoesNotStopTheSweep) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  workspace.add(2, SharedText("Notes"), SharedText("org.example.notes"));
  workspace.windowOwners = PIDs{77};
  workspace.refusing = {1};
  quitHidden();
  EXPECT_EQ(workspace.terminated, (PIDs{1, 2}));
}

}  // namespace
}  // namespace vorli

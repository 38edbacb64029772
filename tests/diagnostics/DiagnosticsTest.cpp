#include "diagnostics/Diagnostics.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CrashCapture.h"
#include "tests/fakes/FileViewer.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/SerialQueue.h"
#include "tests/fakes/SystemDescription.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace vorli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct DiagnosticsTest : testing::Test {
  const std::string log = "/state/Logs/diagnostics.log";
  fakes::Files files;
  fakes::SerialQueue queue;
  fakes::CalendarClock calendar{Date{1'772'357'405.123}};
  fakes::ApplicationBundle bundle;
  fakes::SystemDescription system;
  fakes::CrashCapture crashes;
  fakes::FileViewer viewer;
  std::optional<Diagnostics> diagnostics{
      std::in_place, DiagnosticsNeeds{files, queue, calendar, bundle, system, crashes, viewer},
      DiagnosticsFolders{"/state/Logs", "/data/CrashReports"}};
};

TEST_F(DiagnosticsTest, installMakesTheFoldersLogsTheLaunchAndThenCapturesCrashes) {
  std::size_t queuedBeforeCapture = 0;
  crashes.onInstall = [&] { queuedBeforeCapture = queue.waiting.size(); };
  diagnostics->install();
  EXPECT_THAT(files.createdFolders, ElementsAre("/state/Logs", "/data/CrashReports/pending"));
  EXPECT_EQ(queuedBeforeCapture, 1u);
  queue.runAll();
  EXPECT_EQ(files.contents[log], "2026-03-01T09:30:05.123Z [INFO] Vorli launched, v1.2.3 (build 7)\n");
}

TEST_F(DiagnosticsTest, crashCaptureGetsEverythingThatIsKnownAtLaunch) {
  diagnostics->install();
  ASSERT_EQ(crashes.plans.size(), 1u);
  const auto& plan = crashes.plans.front();
  EXPECT_EQ(plan.logFile, log);
  EXPECT_EQ(plan.previousLogFile, "/state/Logs/diagnostics.1.log");
  EXPECT_EQ(plan.maxLogBytes, 1'000'000u);
  EXPECT_EQ(plan.pendingFolder, "/data/CrashReports/pending");
  EXPECT_EQ(plan.reportSuffix, ".txt");
  EXPECT_EQ(plan.recentLines, 100u);
  EXPECT_NE(plan.pieces.kind.find("Exemplar 12, 6.1.0\nHardware:    Laptop 5\n"), std::string::npos);
}

TEST_F(DiagnosticsTest, missingBuildNumberIsAQuestionMark) {
  bundle.info = {{"CFBundleShortVersionString", "1.2"}};
  diagnostics->install();
  EXPECT_NE(crashes.plans.front().pieces.kind.find("App version: v1.2 (build ?)\n"), std::string::npos);
}

TEST_F(DiagnosticsTest, lineIsWrittenWhenItsTurnComesAndCarriesThatMoment) {
  diagnostics->log("WARN", "late");
  EXPECT_THAT(files.contents, IsEmpty());
  calendar.advance(2.0);
  queue.runAll();
  EXPECT_EQ(files.contents[log], "2026-03-01T09:30:07.123Z [WARN] late\n");
}

TEST_F(DiagnosticsTest, linesQueuedBehindItsEndAreDropped) {
  diagnostics->log("INFO", "too late");
  diagnostics.reset();
  queue.runAll();
  EXPECT_THAT(files.contents, IsEmpty());
}

TEST_F(DiagnosticsTest, logIsRevealedAndMadeWhenThereIsNone) {
  diagnostics->revealLogInFinder();
  EXPECT_EQ(files.contents.at(log), "");
  EXPECT_THAT(viewer.revealed, ElementsAre(log));
}

TEST_F(DiagnosticsTest, revealedLogKeepsWhatItHolds) {
  files.contents[log] = "kept\n";
  diagnostics->revealLogInFinder();
  EXPECT_EQ(files.contents.at(log), "kept\n");
  EXPECT_THAT(diagnostics->recentLogLines(100), ElementsAre("kept", ""));
}

TEST(DiagnosticsDeathTest, noPlaceForLogsStopsTheProgram) {
  fakes::Files files;
  fakes::SerialQueue queue;
  fakes::CalendarClock calendar;
  fakes::ApplicationBundle bundle;
  fakes::SystemDescription system;
  fakes::CrashCapture crashes;
  fakes::FileViewer viewer;
  const DiagnosticsNeeds needs{files, queue, calendar, bundle, system, crashes, viewer};
  EXPECT_DEATH(Diagnostics(needs, {"", "/data"}), "broken invariant");
  EXPECT_DEATH(Diagnostics(needs, {"/state", ""}), "broken invariant");
}

}  // namespace
}  // namespace vorli

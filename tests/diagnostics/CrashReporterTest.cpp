#include "diagnostics/CrashReporter.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LinkOpener.h"
#include "tests/fakes/Pasteboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Folder = CrashReporter::Folder;

struct CrashReporterTest : testing::Test {
  CrashReporterTest() { files.folders.insert("/data/pending"); }

  void addReport(const std::string& name, const std::string& body) {
    files.contents["/data/pending/" + name] = body;
  }
  std::vector<std::string> names() {
    std::vector<std::string> result;
    for (const auto& report : reporter.pendingReports()) result.push_back(report.url);
    return result;
  }
  /// A body that gives the whole link this length.
  static CrashReporter::PendingReport reportForLinkOf(std::size_t length) {
    const std::string start =
        "mailto:help@vorli.test?subject=Vorli%20crash%20report,%20v1.2.3%20(build%207)&body=";
    return {.url = "/data/pending/a.txt",
            .timestamp = {},
            .summary = {},
            .body = std::string(length - start.size(), 'x'),
            .signature = {}};
  }

  fakes::Files files;
  fakes::KeyValueStore defaults;
  fakes::CalendarClock calendar{Date{5000.0}};
  fakes::ApplicationBundle bundle;
  fakes::LinkOpener links;
  fakes::Pasteboard pasteboard;
  fakes::CapturedLog log;
  CrashReporter reporter{{files, defaults, calendar, bundle, links, pasteboard}, "/data", "help@vorli.test"};
};

TEST_F(CrashReporterTest, missingFolderHasNoReports) {
  files.folders.clear();
  EXPECT_THAT(reporter.pendingReports(), IsEmpty());
}

TEST_F(CrashReporterTest, onlyTextFilesAreReports) {
  addReport("a.log", "x");
  addReport("b.txt.swp", "x");
  addReport("ctxt", "x");
  addReport(".d.txt", "x");
  addReport("e.txt", "x");
  EXPECT_THAT(names(), ElementsAre("/data/pending/e.txt"));
}

TEST_F(CrashReporterTest, filesThatCannotBeReadAsTextAreLeftAlone) {
  addReport("binary.txt", "\xFF\xFE");
  addReport("huge.txt", std::string(8'000'001, 'x'));
  addReport("locked.txt", "x");
  files.unreadable.insert("/data/pending/locked.txt");
  addReport("largest.txt", std::string(8'000'000, 'x'));
  EXPECT_THAT(names(), ElementsAre("/data/pending/largest.txt"));
  EXPECT_EQ(files.contents.size(), 4u);
}

TEST_F(CrashReporterTest, summaryIsTheBestThatTheReportHas) {
  addReport("1.txt", "Crash kind:  Signal\n\nSummary\n-------\nFatal signal SIGSEGV (11)\n");
  addReport("2.txt", "Crash kind:  Signal\n");
  addReport("3.txt", "damaged");
  const auto reports = reporter.pendingReports();
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[0].summary, "Fatal signal SIGSEGV (11)");
  EXPECT_EQ(reports[1].summary, "Signal");
  EXPECT_EQ(reports[2].summary, "Vorli ran into an error and quit unexpectedly.");
  EXPECT_EQ(reports[2].body, "damaged");
}

TEST_F(CrashReporterTest, timestampIsOfTheNameThenOfTheFileThenNow) {
  addReport("2026-03-01T09-30-05.123Z.txt", "x");
  addReport("crash.txt", "x");
  files.modified["/data/pending/crash.txt"] = Date{4000.0};
  addReport("other.txt", "x");
  const auto reports = reporter.pendingReports();
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[0].timestamp, Date{4000.0});
  EXPECT_EQ(reports[1].timestamp, Date{5000.0});
  EXPECT_EQ(reports[2].timestamp, Date{1'772'357'405.123});
}

TEST_F(CrashReporterTest, suppressedReportIsHiddenAndStays) {
  addReport("a.txt", "Stack trace\nframe one\n\nRecent activity");
  addReport("b.txt", "Stack trace\nframe two\n\nRecent activity");
  reporter.suppress(reporter.pendingReports().front().signature);
  EXPECT_THAT(names(), ElementsAre("/data/pending/b.txt"));
  EXPECT_EQ(files.contents.size(), 2u);
}

TEST_F(CrashReporterTest, suppressedSignaturesAreASet) {
  defaults.values["vorli.crash.suppressedSignatures"] = std::vector<std::string>{"b", "a"};
  reporter.suppress("c");
  reporter.suppress("a");
  EXPECT_EQ(defaults.values["vorli.crash.suppressedSignatures"],
            StoredValue(std::vector<std::string>{"a", "b", "c"}));
  EXPECT_THAT(
      log.lines(),
      ElementsAre(
          fakes::CapturedLog::Line{LogLevel::standard, "crash-reporter", "Suppressed crash signature c"},
          fakes::CapturedLog::Line{LogLevel::standard, "crash-reporter", "Suppressed crash signature a"}));
}

TEST_F(CrashReporterTest, signatureListOfAnotherTypeCountsAsEmpty) {
  defaults.values["vorli.crash.suppressedSignatures"] = std::string("nonsense");
  addReport("a.txt", "x");
  EXPECT_EQ(names().size(), 1u);
}

TEST_F(CrashReporterTest, reportThatFitsIsPutIntoTheMail) {
  addReport("a.txt", "Line one\n50% \xC3\xA9");
  EXPECT_TRUE(reporter.send(reporter.pendingReports().front()));
  EXPECT_THAT(links.opened,
              ElementsAre("mailto:help@vorli.test?subject=Vorli%20crash%20report,%20v1.2.3%20(build%207)"
                          "&body=Line%20one%0A50%25%20%C3%A9"));
  EXPECT_FALSE(pasteboard.string);
  EXPECT_TRUE(files.contents.contains("/data/sent/a.txt"));
  EXPECT_FALSE(files.contents.contains("/data/pending/a.txt"));
}

TEST_F(CrashReporterTest, linkOfTwoThousandCharactersIsTheLongest) {
  EXPECT_TRUE(reporter.send(reportForLinkOf(1500)));
  EXPECT_TRUE(reporter.send(reportForLinkOf(2000)));
  EXPECT_EQ(links.opened.back().size(), 2000u);
  const auto longer = reportForLinkOf(2001);
  EXPECT_FALSE(reporter.send(longer));
  EXPECT_EQ(links.opened.back(),
            "mailto:help@vorli.test?subject=Vorli%20crash%20report,%20v1.2.3%20(build%207)");
  EXPECT_EQ(pasteboard.string, longer.body);
}

TEST_F(CrashReporterTest, withoutAMailProgramTheReportIsOnTheClipboard) {
  links.hasProgram = false;
  addReport("a.txt", "short");
  EXPECT_FALSE(reporter.send(reporter.pendingReports().front()));
  EXPECT_EQ(links.opened.size(), 2u);
  EXPECT_EQ(pasteboard.string, "short");
  EXPECT_TRUE(files.contents.contains("/data/sent/a.txt"));
}

TEST_F(CrashReporterTest, invalidVersionGivesAPlainSubject) {
  bundle.info["CFBundleVersion"] = "\xFF";
  EXPECT_FALSE(reporter.send(reportForLinkOf(200)));
  EXPECT_THAT(links.opened, ElementsAre("mailto:help@vorli.test?subject=Vorli%20crash"));
}

TEST_F(CrashReporterTest, reportOfTheSameNameIsReplaced) {
  files.folders.insert("/data/dismissed");
  files.contents["/data/dismissed/a.txt"] = "first";
  addReport("a.txt", "second");
  reporter.archive(reporter.pendingReports().front(), Folder::dismissed);
  EXPECT_EQ(files.contents["/data/dismissed/a.txt"], "second");
}

TEST_F(CrashReporterTest, reportThatCannotBeMovedStaysPendingAndIsLogged) {
  addReport("a.txt", "x");
  files.isReadOnly = true;
  reporter.archive(reporter.pendingReports().front(), Folder::sent);
  EXPECT_EQ(names().size(), 1u);
  EXPECT_THAT(log.lines(), ElementsAre(fakes::CapturedLog::Line{
                               LogLevel::error, "crash-reporter",
                               "Failed to move crash report a.txt into sent: Read-only file system"}));
}

}  // namespace
}  // namespace vorli

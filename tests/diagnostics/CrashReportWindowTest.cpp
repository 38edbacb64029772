#include "diagnostics/CrashReportView.h"
#include "diagnostics/CrashReportWindowController.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LinkOpener.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Pasteboard.h"
#include "tests/fakes/SheetWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

struct CrashReportWindowTest : testing::Test {
  CrashReportWindowTest() { files.folders.insert("/data/pending"); }

  void addReports(int count) {
    for (int i = 1; i <= count; ++i) {
      const std::string name = "2026-03-0" + std::to_string(i) + "T09-30-05.123Z.txt";
      files.contents["/data/pending/" + name] = "Summary\n---\nCrash " + std::to_string(i) +
                                                "\n\nStack trace\n---\nframe " + std::to_string(i) +
                                                "\n\nRecent activity";
    }
  }
  std::string shown() const {
    return controller.currentReport() ? controller.currentReport()->summary : "none";
  }

  fakes::ManualScheduler scheduler;
  fakes::Files files;
  fakes::KeyValueStore defaults;
  fakes::CalendarClock calendar;
  fakes::ApplicationBundle bundle;
  fakes::LinkOpener links;
  fakes::Pasteboard pasteboard;
  fakes::SheetWindow window;
  fakes::ApplicationHost host;
  CrashReporter reporter{{files, defaults, calendar, bundle, links, pasteboard}, "/data", "help@vorli.test"};
  CrashReportView* view = nullptr;
  CrashReportWindowController controller{
      {scheduler, calendar, reporter, window, host, [this](CrashReportView& given) { view = &given; }}};
};

TEST_F(CrashReportWindowTest, withoutReportsNothingAppears) {
  controller.showIfNeeded();
  EXPECT_EQ(window.openings, 0);
  EXPECT_EQ(host.activations, 0);
}

TEST_F(CrashReportWindowTest, oldestReportComesFirst) {
  addReports(3);
  controller.showIfNeeded();
  EXPECT_TRUE(window.isOpen);
  EXPECT_EQ(window.title, "Vorli");
  EXPECT_EQ(shown(), "Crash 1");
  EXPECT_EQ(view->report().summary, "Crash 1");
  EXPECT_EQ(host.activations, 1);
}

TEST_F(CrashReportWindowTest, eachHandledReportBringsTheNextAQuarterOfASecondLater) {
  addReports(3);
  controller.showIfNeeded();
  view->send();
  EXPECT_FALSE(window.isOpen);
  EXPECT_EQ(shown(), "none");
  scheduler.advance(0.24);
  EXPECT_FALSE(window.isOpen);
  scheduler.advance(0.01);
  EXPECT_EQ(shown(), "Crash 2");
  view->dismiss();
  scheduler.advance(0.25);
  EXPECT_EQ(shown(), "Crash 3");
  view->send();
  scheduler.advance(0.25);
  EXPECT_FALSE(window.isOpen);
  EXPECT_TRUE(files.contents.contains("/data/sent/2026-03-01T09-30-05.123Z.txt"));
  EXPECT_TRUE(files.contents.contains("/data/dismissed/2026-03-02T09-30-05.123Z.txt"));
  EXPECT_TRUE(files.contents.contains("/data/sent/2026-03-03T09-30-05.123Z.txt"));
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(CrashReportWindowTest, checkBoxSilencesTheKindAndTheReportIsStillFiled) {
  addReports(1);
  controller.showIfNeeded();
  const auto signature = view->report().signature;
  view->setSuppressFutureCrashes(true);
  view->dismiss();
  EXPECT_EQ(defaults.values["vorli.crash.suppressedSignatures"],
            StoredValue(std::vector<std::string>{signature}));
  EXPECT_TRUE(files.contents.contains("/data/dismissed/2026-03-01T09-30-05.123Z.txt"));
}

TEST_F(CrashReportWindowTest, sendingWithTheCheckBoxSilencesTheKindToo) {
  addReports(1);
  controller.showIfNeeded();
  view->setSuppressFutureCrashes(true);
  view->send();
  EXPECT_TRUE(defaults.values.contains("vorli.crash.suppressedSignatures"));
}

TEST_F(CrashReportWindowTest, windowClosedByItsButtonLeavesTheReportPending) {
  addReports(2);
  controller.showIfNeeded();
  window.close();
  EXPECT_EQ(shown(), "none");
  scheduler.advance(10.0);
  EXPECT_FALSE(window.isOpen);
  EXPECT_EQ(files.contents.size(), 2u);
  controller.showIfNeeded();
  EXPECT_EQ(shown(), "Crash 1");
}

TEST_F(CrashReportWindowTest, openWindowKeepsItsReportAndComesToTheFront) {
  addReports(1);
  controller.showIfNeeded();
  files.contents["/data/pending/2020-01-01T00-00-00.000Z.txt"] = "older";
  controller.showIfNeeded();
  EXPECT_EQ(window.openings, 1);
  EXPECT_EQ(window.broughtToFront, 1);
  EXPECT_EQ(host.activations, 2);
  EXPECT_EQ(shown(), "Crash 1");
}

TEST_F(CrashReportWindowTest, reportThatCannotBeFiledIsNotOfferedAgainInThisRun) {
  addReports(2);
  controller.showIfNeeded();
  files.isReadOnly = true;
  view->dismiss();
  scheduler.advance(0.25);
  EXPECT_EQ(shown(), "Crash 2");
  view->dismiss();
  scheduler.advance(0.25);
  EXPECT_FALSE(window.isOpen);
}

TEST_F(CrashReportWindowTest, viewHasItsTexts) {
  addReports(1);
  controller.showIfNeeded();
  EXPECT_EQ(CrashReportView::title, "Vorli crashed last time");
  EXPECT_EQ(view->body(),
            "Vorli ran into an error and quit unexpectedly on Mar 1, 2026 at 9:30 AM. You can send the "
            "details to Kelvaran so he can fix it, or dismiss this and carry on.");
  EXPECT_EQ(view->disclosure().text, "View report");
  EXPECT_EQ(view->disclosure().symbol, "chevron.right");
  EXPECT_EQ(view->disclosure().accessibilityLabel, "View crash report");
  EXPECT_EQ(view->disclosure().accessibilityHint, "Expands the full crash report text");
  EXPECT_EQ(view->disclosureAccessibilityValue(), "Crash 1. Currently collapsed");
  view->toggleFullReport();
  EXPECT_EQ(view->disclosure().text, "Hide report");
  EXPECT_EQ(view->disclosure().symbol, "chevron.down");
  EXPECT_EQ(view->disclosure().accessibilityLabel, "Hide crash report");
  EXPECT_EQ(view->disclosure().accessibilityHint, "Collapses the report detail");
  EXPECT_EQ(view->disclosureAccessibilityValue(), "Crash 1. Currently expanded");
}

TEST(CrashReportDateTest, hoursUseTheTwelveHourClock) {
  EXPECT_EQ(mediumDateShortTime({.year = 2026, .month = 12, .day = 31, .hour = 0, .minute = 5}),
            "Dec 31, 2026 at 12:05 AM");
  EXPECT_EQ(mediumDateShortTime({.year = 2026, .month = 1, .day = 2, .hour = 11, .minute = 59}),
            "Jan 2, 2026 at 11:59 AM");
  EXPECT_EQ(mediumDateShortTime({.year = 2026, .month = 1, .day = 2, .hour = 12, .minute = 0}),
            "Jan 2, 2026 at 12:00 PM");
  EXPECT_EQ(mediumDateShortTime({.year = 2026, .month = 1, .day = 2, .hour = 23, .minute = 10}),
            "Jan 2, 2026 at 11:10 PM");
}

}  // namespace
}  // namespace vorli

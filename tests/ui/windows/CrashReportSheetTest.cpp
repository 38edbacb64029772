#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LinkOpener.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/Pasteboard.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/SpokenElement.h"
#include "ui/kit/CheckBox.h"
#include "ui/windows/CrashReportSheet.h"
#include "ui/windows/SheetWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMargins>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextEdit>
#include <gtest/gtest.h>
#include <optional>

namespace vorli::ui {
namespace {

struct CrashReportSheetTest : testing::Test {
  fakes::ManualScheduler scheduler;
  fakes::CalendarClock calendar{scheduler};
  fakes::KeyValueStore defaults;
  fakes::ApplicationBundle bundle;
  fakes::Files files;
  fakes::LinkOpener links;
  fakes::Pasteboard pasteboard;
  CrashReporter reporter{
      {files, defaults, calendar, bundle, links, pasteboard}, "/crashes", "help@example.org"};
  int sent = 0, dismissed = 0;
  std::optional<CrashReportView> view;
  fakes::MotionPreference motion;
  FakeSurroundings surroundings;
  SheetWindow window;
  int closings = 0;

  CrashReportSheetTest() {
    const std::string body =
        "Vorli crash report\n==================\nTimestamp:   2026-03-01T09:30:05.123Z\n"
        "App version: v1.0 (build 100)\nSystem:      Debian GNU/Linux 12\nCrash kind:  Signal\n\n"
        "Summary\n-------\nSIGSEGV (11)\n\nStack trace\n-----------\n" +
        std::string("0   Vorli   0x0000000104a3c2f0 refresh + 184\n") + std::string(3000, 'x');
    view.emplace(
        reporter, calendar,
        CrashReporter::PendingReport{"/crashes/pending/one.txt", Date{}, "SIGSEGV (11)", body, "sig"},
        [this] { ++sent; }, [this] { ++dismissed; });
    window.setCloseHandler([this] { ++closings; });
  }
  ~CrashReportSheetTest() override {
    window.close();
    settleWindows();
  }

  CrashReportSheet& open() {
    window.take(new CrashReportSheet(surroundings, *view));
    window.open("Vorli");
    return *sheet();
  }
  static CrashReportSheet* sheet() {
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (auto* found = dynamic_cast<CrashReportSheet*>(widget); found && found->isVisible()) return found;
    }
    return nullptr;
  }
  static QAbstractButton* button(const QString& name) {
    for (auto* found : sheet()->findChildren<QAbstractButton*>()) {
      if ((found->accessibleName().isEmpty() ? found->text() : found->accessibleName()) == name) return found;
    }
    return nullptr;
  }
  static void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(widget, &event);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
};

TEST_F(CrashReportSheetTest, textsFitFoldedAndUnfolded) {
  expectTextsFit(open(), QStringLiteral("folded"));
  view->toggleFullReport();
  expectTextsFit(*sheet(), QStringLiteral("unfolded"));
}

TEST_F(CrashReportSheetTest, theReportUnfoldsAndFoldsByItsHeight) {
  surroundings.moves.emplace(WindowMotion{scheduler, motion});
  open();
  auto* report = sheet()->findChild<QTextEdit*>();
  const QImage folded = sheet()->grab().toImage();
  view->toggleFullReport();
  EXPECT_TRUE(report->isVisible());
  scheduler.advance(0.05);
  const int between = report->height();
  scheduler.advance(0.3);
  EXPECT_GT(report->height(), between);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  view->toggleFullReport();
  scheduler.advance(0.05);
  EXPECT_TRUE(report->isVisible());
  scheduler.advance(0.3);
  EXPECT_FALSE(report->isVisible());
  EXPECT_EQ(sheet()->grab().toImage(), folded);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  motion.setReduced(true);
  view->toggleFullReport();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(CrashReportSheetTest, bothAnswersReachTheView) {
  open();
  button("Send crash report")->click();
  EXPECT_EQ(sent, 1);
  button("Not this time")->click();
  EXPECT_EQ(dismissed, 1);
}

TEST_F(CrashReportSheetTest, checkBoxFollowsTheView) {
  open();
  button("Don't ask me about this kind of crash again")->click();
  EXPECT_TRUE(view->suppressFutureCrashes.get());
}

TEST_F(CrashReportSheetTest, disclosureShowsTheReportAndSaysSo) {
  open();
  auto* report = sheet()->findChild<QTextEdit*>();
  EXPECT_TRUE(report->isHidden());
  auto* disclosure = button("View crash report");
  ASSERT_NE(disclosure, nullptr);
  disclosure->click();
  EXPECT_FALSE(report->isHidden());
  EXPECT_EQ(report->accessibleName(), "Crash report contents");
  EXPECT_EQ(report->toPlainText().left(18), "Vorli crash report");
  EXPECT_TRUE(report->textInteractionFlags() & Qt::TextSelectableByMouse);
  EXPECT_EQ(disclosure->accessibleName(), "Hide crash report");
  EXPECT_EQ(static_cast<Control*>(disclosure)->spokenValue(), "SIGSEGV (11). Currently expanded");
}

TEST_F(CrashReportSheetTest, theWindowAndItsControlsSayWhatTheyAre) {
  auto& shown = open();
  const SpokenElement window = spokenElement(shown);
  EXPECT_EQ(window.role, QAccessible::Dialog);
  EXPECT_EQ(window.name, "Vorli");
  EXPECT_EQ(window.hint, "Vorli crashed last time. Vorli ran into an error and quit unexpectedly on " +
                             QString::fromStdString(view->date()) +
                             ". You can send the details to Kelvaran so he can fix it, or dismiss this and "
                             "carry on.");
  auto* disclosure = button("View crash report");
  ASSERT_NE(disclosure, nullptr);
  EXPECT_EQ(spokenElement(*disclosure),
            (SpokenElement{QAccessible::Button, "View crash report", "SIGSEGV (11). Currently collapsed",
                           "Expands the full crash report text"}));
  disclosure->click();
  EXPECT_EQ(spokenElement(*disclosure),
            (SpokenElement{QAccessible::Button, "Hide crash report", "SIGSEGV (11). Currently expanded",
                           "Collapses the report detail"}));
  EXPECT_EQ(spokenElement(*shown.findChild<QTextEdit*>()),
            (SpokenElement{QAccessible::EditableText, "Crash report contents",
                           QString::fromStdString(view->report().body), ""}));
  const QString suppress = "Don't ask me about this kind of crash again";
  EXPECT_EQ(spokenElement(*button(suppress)), (SpokenElement{QAccessible::CheckBox, suppress, "", ""}));
  EXPECT_EQ(spokenElement(*button("Not this time")),
            (SpokenElement{QAccessible::Button, "Not this time", "", ""}));
  EXPECT_EQ(spokenElement(*button("Send crash report")),
            (SpokenElement{QAccessible::Button, "Send crash report", "",
                           "Opens your email client with the report attached"}));
  EXPECT_EQ(spokenElement(*button("Close")), (SpokenElement{QAccessible::Button, "Close", "", ""}));
}

TEST_F(CrashReportSheetTest, theReportUnfoldsAtItsFirstLine) {
  for (const bool moves : {false, true}) {
    if (moves) surroundings.moves.emplace(WindowMotion{scheduler, motion});
    auto* report = open().findChild<QTextEdit*>();
    view->toggleFullReport();
    scheduler.advance(0.5);
    EXPECT_GT(report->verticalScrollBar()->maximum(), 20);
    EXPECT_EQ(report->verticalScrollBar()->value(), 0) << moves;
    view->toggleFullReport();
    scheduler.advance(0.5);
    window.close();
  }
}

TEST_F(CrashReportSheetTest, theKeysReachTheVeryEndsOfTheReport) {
  open();
  view->toggleFullReport();
  auto* report = sheet()->findChild<QTextEdit*>();
  const auto& down = *report->verticalScrollBar();
  const auto& right = *report->horizontalScrollBar();
  ASSERT_GT(down.maximum(), 20);
  ASSERT_GT(right.maximum(), 20);
  press(report, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(down.value(), down.maximum());
  EXPECT_EQ(right.value(), right.maximum());
  press(report, Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(down.value(), 0);
  EXPECT_EQ(right.value(), 0);
}

TEST_F(CrashReportSheetTest, aKeyThatMovesNothingLeavesTheReportWhereItWasScrolledTo) {
  open();
  view->toggleFullReport();
  auto* report = sheet()->findChild<QTextEdit*>();
  auto& down = *report->verticalScrollBar();
  down.setValue(down.maximum());
  press(report, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(down.value(), down.maximum());
}

TEST_F(CrashReportSheetTest, theReportIsInsetFromItsCard) {
  open();
  view->toggleFullReport();
  const auto* report = sheet()->findChild<QTextEdit*>();
  const auto* disclosure = button("Hide crash report");
  const int margin = static_cast<int>(report->document()->documentMargin());
  EXPECT_EQ(report->y() + margin, disclosure->y() + 44 + 12);
  EXPECT_EQ(report->x() + margin, disclosure->x() + 14);
}

TEST_F(CrashReportSheetTest, nothingIsPaintedWhereBothScrollBarsMeet) {
  auto& shown = open();
  view->toggleFullReport();
  const auto* report = shown.findChild<QTextEdit*>();
  const QImage image = shown.grab().toImage();
  ASSERT_TRUE(report->verticalScrollBar()->isVisible() && report->horizontalScrollBar()->isVisible());
  const QPoint corner = report->geometry().bottomRight() - QPoint(6, 6);
  EXPECT_EQ(image.pixelColor(corner), image.pixelColor(corner - QPoint(30, 0)));
  EXPECT_EQ(image.pixelColor(corner + QPoint(0, 5)), image.pixelColor(corner + QPoint(-30, 5)));
}

TEST_F(CrashReportSheetTest, anOpenWindowTakesTheDesktopsColoursAndKeepsItsState) {
  auto& shown = open();
  button("View crash report")->click();
  button("Don't ask me about this kind of crash again")->click();
  const QImage light = shown.grab().toImage();
  surroundings.change(Appearance::dark);
  EXPECT_NE(shown.grab().toImage(), light);
  EXPECT_EQ(surroundings.fronts, 1);
  EXPECT_FALSE(shown.findChild<QTextEdit*>()->isHidden());
  EXPECT_TRUE(button("Don't ask me about this kind of crash again")->isChecked());
  button("Send crash report")->click();
  EXPECT_EQ(sent, 1);
}

TEST_F(CrashReportSheetTest, escapeDoesNotCloseItAndTheUsualKeyDoes) {
  open();
  press(sheet(), Qt::Key_Escape);
  ASSERT_NE(sheet(), nullptr);
  press(sheet(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(sheet(), nullptr);
  EXPECT_EQ(closings, 1);
  EXPECT_EQ(sent + dismissed, 0);
}

TEST_F(CrashReportSheetTest, windowOpensAgainAfterItWasClosed) {
  open();
  window.close();
  EXPECT_EQ(closings, 1);
  EXPECT_EQ(sheet(), nullptr);
  open();
  window.centerAndBringToFront();
  EXPECT_EQ(surroundings.fronts, 3);
  EXPECT_NE(sheet(), nullptr);
}

// Writes pictures for people to look at into the folder VORLI_PICTURES, if that is set.
TEST_F(CrashReportSheetTest, partsDoNotOverlapInEitherState) {
  const QString folder = qEnvironmentVariable("VORLI_PICTURES");
  for (const auto look : {Appearance::light, Appearance::dark}) {
    surroundings.look = look;
    for (const bool expanded : {false, true}) {
      if (view->showFullReport != expanded) view->toggleFullReport();
      auto& shown = open();
      const auto name = QStringLiteral("crash-%1-%2.png")
                            .arg(expanded ? QStringLiteral("expanded") : QStringLiteral("collapsed"),
                                 look == Appearance::dark ? QStringLiteral("dark") : QStringLiteral("light"));
      const QImage picture = shown.grab().toImage();
      if (!folder.isEmpty()) picture.save(QDir(folder).filePath(name));
      const auto buttons = shown.findChildren<QAbstractButton*>();
      for (const auto* one : buttons) {
        EXPECT_TRUE(shown.rect().contains(one->geometry()));
        for (const auto* other : buttons) {
          if (one == other) continue;
          constexpr QMargins ring(4, 4, 4, 4);
          EXPECT_FALSE(
              one->geometry().marginsRemoved(ring).intersects(other->geometry().marginsRemoved(ring)));
        }
      }
      window.close();
    }
  }
}

}  // namespace
}  // namespace vorli::ui

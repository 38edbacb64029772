#include "tests/fakes/Publish.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "tests/ui/windows/PngBytes.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/ShownWidgets.h"
#include "tests/ui/windows/SpokenElement.h"
#include "tests/ui/windows/StartupAppsPageFixture.h"
#include "ui/kit/BulkBanner.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/SearchField.h"
#include "ui/kit/ThinScrollBar.h"
#include "ui/kit/Toast.h"
#include "ui/windows/StartupAppRowWidget.h"
#include "ui/windows/StartupAppsList.h"
#include "ui/windows/StartupAppsPage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QPushButton>
#include <QRegion>
#include <QScrollBar>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

struct StartupAppsPageTest : StartupAppsPageFixture {
  /// Shows a scan in progress.
  void lookForItems() {
    fakes::publish(startup->isScanning, true);
    scheduler.runReady();
  }
  QStringList spokenTexts() const {
    QStringList texts;
    for (const auto* label : shownWidgets<QLabel>(*page)) texts.push_back(label->text());
    return texts;
  }
};

TEST_F(StartupAppsPageTest, beingShownBeginsAVisitAndBeingHiddenEndsIt) {
  openPage({row("a")});
  EXPECT_FALSE(defaults.values.contains(StartupItemService::lastVisitKey));
  page->hide();
  EXPECT_TRUE(defaults.values.contains(StartupItemService::lastVisitKey));
}

TEST_F(StartupAppsPageTest, searchingNarrowsTheListAsOneTypes) {
  openPage({row("Apple"), row("Pear")});
  EXPECT_NE(list().rowWidget("Pear"), nullptr);
  type("app");
  EXPECT_NE(list().rowWidget("Apple"), nullptr);
  EXPECT_EQ(list().rowWidget("Pear"), nullptr);
  type("");
  EXPECT_NE(list().rowWidget("Pear"), nullptr);
}

TEST_F(StartupAppsPageTest, pressingDisableAsksFirstWhereItMust) {
  openPage({row("Vault", asking)});
  button(rowOf("Vault"), "Disable")->click();
  scheduler.runReady();
  settleWindows();
  EXPECT_NE(rowOf("Vault").panelHeight(), 0.0);
  auto* cancel = button(rowOf("Vault"), "Cancel");
  ASSERT_NE(cancel, nullptr);
  cancel->click();
  scheduler.runReady();
  settleWindows();
  EXPECT_EQ(rowOf("Vault").panelHeight(), 0.0);
}

TEST_F(StartupAppsPageTest, anAnsweredPanelGivesTheFocusBackToItsRow) {
  openPage({heavy("Hog"), row("Vault", asking)});
  auto* disable = button(rowOf("Vault"), "Disable");
  disable->setFocus(Qt::TabFocusReason);
  disable->click();
  scheduler.runReady();
  auto* cancel = button(rowOf("Vault"), "Cancel");
  ASSERT_EQ(window->focusWidget(), cancel);
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(cancel, &escape);
  scheduler.runReady();
  EXPECT_EQ(window->focusWidget(), disable);

  auto* keep = button(rowOf("Hog"), "Keep it on");
  keep->setFocus(Qt::TabFocusReason);
  keep->click();
  scheduler.runReady();
  EXPECT_EQ(window->focusWidget(), button(rowOf("Hog"), "Disable"));
}

TEST_F(StartupAppsPageTest, theFieldAndTheBannersSayWhatTheyAreFor) {
  openPage({leftover("Old"), row("a")});
  auto& search = list().search();
  EXPECT_EQ(spokenElement(search.edit()),
            (SpokenElement{QAccessible::EditableText, "Find an app…", "",
                           "Filters the list by name, description, or installer."}));
  EXPECT_EQ(search.accessibleName(), "2 apps, 1 leftover");
  const auto banners = shownWidgets<BulkBanner>(list());
  ASSERT_EQ(banners.size(), 1);
  EXPECT_EQ(banners[0]->accessibleName(), "1 leftover app");
  EXPECT_EQ(banners[0]->accessibleDescription(), "From software you've already removed. Safe to clean up.");
  EXPECT_EQ(spokenElement(banners[0]->button()),
            (SpokenElement{QAccessible::Button, "Remove all 1 leftover app", "", ""}));
}

TEST_F(StartupAppsPageTest, theListIsAListWhoseItemsAreItsRows) {
  openPage({leftover("Old"), row("a")});
  EXPECT_EQ(spokenElement(list()).role, QAccessible::List);
  auto* spoken = QAccessible::queryAccessibleInterface(&rowOf("a"));
  EXPECT_EQ(spoken->role(), QAccessible::ListItem);
  EXPECT_EQ(spoken->parent()->object(), &list());
}

TEST_F(StartupAppsPageTest, aHeavyRowShowsItsAdviceUntilItIsDismissed) {
  openPage({heavy("Hog"), row("Mouse")});
  const double below = list().layoutOfRows().heading(1).top();
  auto* keep = button(rowOf("Hog"), "Keep it on");
  ASSERT_NE(keep, nullptr);
  keep->click();
  scheduler.runReady();
  scheduler.advance(0.11);
  const double between = list().layoutOfRows().heading(1).top();
  EXPECT_LT(between, below);
  scheduler.advance(0.2);
  settleWindows();
  EXPECT_LT(list().layoutOfRows().heading(1).top(), between);
  EXPECT_EQ(button(rowOf("Hog"), "Keep it on"), nullptr);
  EXPECT_LT(list().layoutOfRows().heading(1).top(), below);
}

TEST_F(StartupAppsPageTest, aRemovedRowShrinksAwayAndOffersToUndo) {
  openPage({leftover("Old"), leftover("Older")});
  const double before = list().layoutOfRows().card(0).height();
  button(rowOf("Old"), "Remove")->click();
  scheduler.runReady();
  settleWindows();
  scheduler.advance(0.11);
  const double between = list().layoutOfRows().card(0).height();
  EXPECT_LT(between, before);
  EXPECT_GT(between, before / 2.0);
  scheduler.advance(0.2);
  EXPECT_NEAR(list().layoutOfRows().card(0).height(), before / 2.0, 0.01);
  ASSERT_EQ(toasts().size(), 1);
  EXPECT_EQ(toasts()[0]->button().accessibleName(), "Undo removed Old");
  scheduler.advance(6.0);
  settleWindows();
  EXPECT_TRUE(toasts().isEmpty());
}

TEST_F(StartupAppsPageTest, removingTheLastRowOfASectionRemovesTheSection) {
  openPage({leftover("Old"), row("a")});
  button(rowOf("Old"), "Remove")->click();
  scheduler.runReady();
  scheduler.advance(0.11);
  EXPECT_EQ(list().layoutOfRows().sectionCount(), 2u);
  scheduler.advance(0.2);
  EXPECT_EQ(list().layoutOfRows().sectionCount(), 1u);
}

TEST_F(StartupAppsPageTest, bothToastsAreStackedAndLeaveRoomForTheLastRow) {
  openPage({row("a")});
  const double height = list().layoutOfRows().height();
  fakes::publish(startup->pendingUndo, UndoAction{UndoAction::Kind::paused, "a", "A", Date(), std::nullopt});
  fakes::publish(startup->helperUnavailable,
                 HelperUnavailable{"A", Date(), HelperUnavailable::Reason::notApproved});
  scheduler.runReady();
  settleWindows();
  ASSERT_EQ(toasts().size(), 2);
  EXPECT_EQ(toasts()[0]->button().text(), "Undo");
  EXPECT_EQ(toasts()[1]->button().text(), "Ask again");
  EXPECT_LT(toasts()[1]->y(), toasts()[0]->y());
  EXPECT_EQ(list().layoutOfRows().height(), height + 128.0);
}

TEST_F(StartupAppsPageTest, eachToastAndItsButtonSayWhatTheyAreFor) {
  openPage({row("a")});
  const auto expectToast = [this](const QString& text, const SpokenElement& answer) {
    scheduler.runReady();
    scheduler.advance(0.5);
    settleWindows();
    ASSERT_EQ(toasts().size(), 1);
    EXPECT_EQ(spokenElement(*toasts()[0]).name, text);
    EXPECT_EQ(spokenElement(toasts()[0]->button()), answer);
  };
  fakes::publish(startup->pendingUndo,
                 UndoAction{UndoAction::Kind::paused, "a", "ARK Audio", Date(), std::nullopt});
  expectToast("Paused ARK Audio", {QAccessible::Button, "Undo paused ARK Audio", "", ""});
  fakes::publish(startup->pendingUndo,
                 UndoAction{UndoAction::Kind::removed, "a", "ARK Audio", Date(), std::nullopt});
  expectToast("Removed ARK Audio", {QAccessible::Button, "Undo removed ARK Audio", "", ""});
  fakes::publish(startup->pendingUndo, std::nullopt);
  fakes::publish(startup->helperUnavailable,
                 HelperUnavailable{"ARK Audio", Date(), HelperUnavailable::Reason::notResponding});
  expectToast("Helper isn't responding. Couldn't remove ARK Audio",
              {QAccessible::Button, "Reinstall background helper", "",
               "Rebuilds the helper. Try Remove on ARK Audio again afterwards."});
  fakes::publish(startup->helperUnavailable,
                 HelperUnavailable{"ARK Audio", Date(), HelperUnavailable::Reason::notApproved});
  expectToast(
      "Your password is needed to change ARK Audio",
      {QAccessible::Button, "Ask for the password again", "", "Your password is needed to change ARK Audio"});
}

TEST_F(StartupAppsPageTest, anApplicationThatMustBeClosedByHandIsNamedInAToast) {
  auto running = row("Acme");
  running.runningAppBundleID = "com.acme";
  openPage({running});
  workspace.add(7, SharedText("Acme"), SharedText("com.acme"));
  workspace.refusing = {7};
  button(rowOf("Acme"), "Quit")->click();
  scheduler.runReady();
  settleWindows();
  ASSERT_EQ(toasts().size(), 1);
  EXPECT_EQ(toasts()[0]->accessibleName(), "Acme has to be closed by hand on this desktop.");
  EXPECT_EQ(toasts()[0]->button().text(), "OK");
  toasts()[0]->button().click();
  scheduler.advance(1.0);
  settleWindows();
  EXPECT_TRUE(toasts().empty());
}

TEST_F(StartupAppsPageTest, aRemovedRowPassesTheFocusToUndoAndTheToastToTheSearchField) {
  openPage({leftover("Old"), row("a")});
  auto* remove = button(rowOf("Old"), "Remove");
  remove->setFocus(Qt::TabFocusReason);
  remove->click();
  scheduler.runReady();
  settleWindows();
  ASSERT_EQ(toasts().size(), 1);
  EXPECT_EQ(window->focusWidget(), &toasts()[0]->button());
  scheduler.advance(7.0);
  settleWindows();
  EXPECT_TRUE(toasts().isEmpty());
  EXPECT_EQ(window->focusWidget(), &list().search().edit());
}

TEST_F(StartupAppsPageTest, tabComesToAToastAfterTheRowsAndBeforeTheWindowsOwnButtons) {
  openPage({row("a")});
  QPushButton close(QStringLiteral("Close"), window.get());
  fakes::publish(startup->pendingUndo, UndoAction{UndoAction::Kind::paused, "a", "A", Date(), std::nullopt});
  scheduler.runReady();
  ASSERT_EQ(toasts().size(), 1);
  QStringList order;
  QWidget* const first = &list().search().edit();
  for (auto* at = first->nextInFocusChain(); at != first; at = at->nextInFocusChain())
    if (const auto* found = qobject_cast<QAbstractButton*>(at)) order.push_back(found->text());
  EXPECT_EQ(order, (QStringList{"Quit", "Disable", "Undo", "Close"}));
}

TEST_F(StartupAppsPageTest, theThumbIsSeenWhileScrollingAndScrollsTheList) {
  openPage(thousandRows());
  ThinScrollBar* thumb = nullptr;
  for (auto* widget : page->findChildren<QWidget*>())
    if (auto* found = dynamic_cast<ThinScrollBar*>(widget)) thumb = found;
  ASSERT_NE(thumb, nullptr);
  QEvent leave(QEvent::Leave);  // the window may have opened under the pointer
  QCoreApplication::sendEvent(page, &leave);
  EXPECT_TRUE(thumb->isHidden());
  EXPECT_EQ(thumb->maximum(), bar().maximum());
  bar().setValue(1000);
  EXPECT_FALSE(thumb->isHidden());
  EXPECT_EQ(thumb->value(), 1000);
  scheduler.advance(0.9);
  EXPECT_FALSE(thumb->isHidden());
  scheduler.advance(0.2);
  EXPECT_TRUE(thumb->isHidden());
  thumb->setValue(thumb->maximum());
  EXPECT_EQ(bar().value(), bar().maximum());
  EXPECT_NE(list().rowWidget("com.acme.999"), nullptr);
}

TEST_F(StartupAppsPageTest, theTextInPlaceOfTheListIsSpoken) {
  openPage({});
  EXPECT_TRUE(
      spokenTexts().contains("Nothing to tidy. Nothing unusual is running in the background. "
                             "Your computer is in good shape."))
      << spokenTexts().join('|').toStdString();
  lookForItems();
  EXPECT_TRUE(spokenTexts().contains("Looking for apps running on your computer…"));
  fakes::publish(startup->isScanning, false);
  openPage({row("a")});
  EXPECT_FALSE(spokenTexts().join(' ').contains("No matches"));
  type("zzz");
  EXPECT_TRUE(spokenTexts().contains("No matches. Try a shorter search, or clear it to see everything."));
}

TEST_F(StartupAppsPageTest, theFooterStaysWhenNothingMatches) {
  openPage({row("a")});
  fakes::publish(startup->hiddenSystemCount, 3);
  type("zzz");
  EXPECT_TRUE(spokenTexts().contains(
      "Vorli hides 3 apps that your system runs for itself. They're safe and you shouldn't turn them off."));
}

TEST_F(StartupAppsPageTest, aToastRisesIntoItsPlaceAndFadesAwayFromIt) {
  openPage({row("a")});
  fakes::publish(startup->pendingUndo, UndoAction{UndoAction::Kind::paused, "a", "A", Date(), std::nullopt});
  scheduler.runReady();
  ASSERT_EQ(toasts().size(), 1);
  const auto* toast = toasts()[0];
  const int below = toast->y();
  EXPECT_NE(toast->graphicsEffect(), nullptr);
  scheduler.advance(2.0);
  EXPECT_EQ(toast->y(), below - 12);
  EXPECT_EQ(toast->graphicsEffect(), nullptr);
  fakes::publish(startup->pendingUndo, std::nullopt);
  scheduler.runReady();
  scheduler.advance(0.15);
  EXPECT_EQ(toasts().size(), 1);
  EXPECT_EQ(toast->y(), below - 12);
  scheduler.advance(0.05);
  EXPECT_TRUE(toasts().isEmpty());
}

TEST_F(StartupAppsPageTest, withLessMotionAToastOnlyFades) {
  motion.setReduced(true);
  openPage({row("a")});
  fakes::publish(startup->pendingUndo, UndoAction{UndoAction::Kind::paused, "a", "A", Date(), std::nullopt});
  scheduler.runReady();
  const int place = toasts().at(0)->y();
  EXPECT_NE(toasts()[0]->graphicsEffect(), nullptr);
  scheduler.advance(0.15);
  EXPECT_EQ(toasts().at(0)->y(), place);
  EXPECT_EQ(toasts()[0]->graphicsEffect(), nullptr);
}

TEST_F(StartupAppsPageTest, theSpinnerTurnsWhileLookingAndRestsWithLessMotion) {
  openPage({});
  lookForItems();
  const QImage first = page->grab().toImage();
  scheduler.advance(0.1);
  EXPECT_NE(page->grab().toImage(), first);
  motion.setReduced(true);
  const QImage rest = page->grab().toImage();
  scheduler.advance(0.5);
  EXPECT_EQ(page->grab().toImage(), rest);
}

TEST_F(StartupAppsPageTest, aStepOfTheSpinnerPaintsNothingButTheSpinner) {
  openPage({});
  lookForItems();
  settleWindows();
  window->repaint();  // whatever was still pending
  struct PaintedPart final : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::Paint) part |= static_cast<QPaintEvent*>(event)->region();
      return false;
    }
    QRegion part;
  } painted;
  page->installEventFilter(&painted);
  scheduler.advance(0.1);
  QEvent paintNow(QEvent::UpdateRequest);
  QCoreApplication::sendEvent(window.get(), &paintNow);
  ASSERT_FALSE(painted.part.isEmpty());
  EXPECT_LE(painted.part.boundingRect().width(), 33);
  EXPECT_LE(painted.part.boundingRect().height(), 33);
}

TEST_F(StartupAppsPageTest, withLessMotionARemovedRowFadesAndIsGoneInOneStep) {
  motion.setReduced(true);
  openPage({leftover("Old"), leftover("Older")});
  const double before = list().layoutOfRows().card(0).height();
  auto* remove = button(rowOf("Old"), "Remove");
  remove->setFocus(Qt::TabFocusReason);
  remove->click();
  scheduler.runReady();
  settleWindows();
  std::set<int> heights;
  bool wasFaint = false;
  for (int step = 0; step < 40; ++step) {
    const auto* leaving = list().rowWidget("Old");
    wasFaint = wasFaint || (leaving && leaving->graphicsEffect());
    heights.insert(qRound(list().layoutOfRows().card(0).height()));
    scheduler.advance(0.01);
  }
  EXPECT_TRUE(wasFaint);
  EXPECT_EQ(heights, (std::set<int>{qRound(before / 2.0), qRound(before)}));
  EXPECT_EQ(list().rowWidget("Old"), nullptr);
  ASSERT_EQ(toasts().size(), 1);
  EXPECT_EQ(window->focusWidget(), &toasts()[0]->button());
}

TEST_F(StartupAppsPageTest, theFadesLeaveTheWindowsCornersAlone) {
  openPage(thousandRows());
  QImage image(page->size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  page->render(&image, {}, {}, QWidget::DrawChildren);
  EXPECT_GT(qAlpha(image.pixel(332, 503)), 200);
  for (int reach = 0; reach < 14; ++reach) {
    EXPECT_EQ(qAlpha(image.pixel(663 - reach, 503)), 0) << reach;
    EXPECT_EQ(qAlpha(image.pixel(663, 503 - reach)), 0) << reach;
  }
}

TEST_F(StartupAppsPageTest, aQuestionOpensByItsHeightAndAtOnceWithLessMotion) {
  openPage({row("Vault", asking)});
  const double closed = list().layoutOfRows().card(0).height();
  button(rowOf("Vault"), "Disable")->click();
  scheduler.runReady();
  EXPECT_EQ(list().layoutOfRows().card(0).height(), closed);
  scheduler.advance(0.3);
  const double open = list().layoutOfRows().card(0).height();
  EXPECT_GT(open, closed + 80.0);
  button(rowOf("Vault"), "Cancel")->click();
  scheduler.runReady();
  scheduler.advance(0.3);
  EXPECT_EQ(list().layoutOfRows().card(0).height(), closed);
  motion.setReduced(true);
  button(rowOf("Vault"), "Disable")->click();
  scheduler.runReady();
  EXPECT_EQ(list().layoutOfRows().card(0).height(), open);
}

TEST_F(StartupAppsPageTest, aThousandRowsNeedOnlyTheWidgetsNearby) {
  openPage(thousandRows());
  EXPECT_LT(list().rowWidgetCount(), 40u);
  EXPECT_GT(list().height(), 84'000);
  std::size_t most = 0;
  for (int position = 0; position < bar().maximum(); position += 7000) {
    bar().setValue(position);
    most = std::max(most, list().rowWidgetCount());
  }
  EXPECT_LT(most, 40u);
  bar().setValue(bar().maximum());
  EXPECT_NE(list().rowWidget("com.acme.999"), nullptr);
}

TEST_F(StartupAppsPageTest, tabWalksFromTheSearchFieldThroughEveryRow) {
  std::vector<StartupItem> items;
  for (int i = 0; i < 30; ++i) items.push_back(row("app" + std::to_string(i)));
  openPage(std::move(items));
  list().search().edit().setFocus();
  std::set<std::string> seen;
  for (int step = 0; step < 80 && seen.size() < 30; ++step) {
    QWidget* focused = QApplication::focusWidget() ? QApplication::focusWidget() : window->focusWidget();
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(focused, &tab);
    QWidget* now = window->focusWidget();
    if (auto* parent = dynamic_cast<StartupAppRowWidget*>(now ? now->parentWidget() : nullptr))
      seen.insert(parent->itemID());
  }
  EXPECT_EQ(seen.size(), 30u);
}

TEST_F(StartupAppsPageTest, aRowShowsItsApplicationsIconOnceItHasBeenRead) {
  auto acme = row("Acme");
  acme.appURL = "/usr/share/applications/acme.desktop";
  icons.images["/usr/share/applications/acme.desktop"] = pngOf({64, 64}, Qt::red);
  openPage({acme, row("Bare")});
  const auto centreOf = [this](const std::string& id) {
    return QColor(rowOf(id).grab().toImage().pixelColor(16 + 20, 15 + 20));
  };
  EXPECT_NE(centreOf("Acme"), QColor(Qt::red));
  EXPECT_EQ(icons.looks, 1);
  scheduler.advance(1.0);
  EXPECT_EQ(centreOf("Acme"), QColor(Qt::red));
  EXPECT_NE(centreOf("Bare"), QColor(Qt::red));
  const auto asked = icons.asked.size();
  scheduler.advance(60.0);
  settleWindows();
  EXPECT_EQ(icons.asked.size(), asked);
}

TEST_F(StartupAppsPageTest, oneSecondThreadEndsWithThePage) {
  openPage(thousandRows());
  EXPECT_TRUE(icons.asked.empty());  // nothing is read on the main thread
  window.reset();
  EXPECT_LE(icons.asked.size(), 1u);
}

TEST_F(StartupAppsPageTest, onlyTheRowItselfIsDrawnThroughAnEffect) {
  auto off = leftover("Vault");
  off.isEnabled = false;
  off.requiresConfirmation = true;
  openPage({off});
  button(rowOf("Vault"), "Remove")->click();
  scheduler.runReady();
  scheduler.advance(0.1);
  EXPECT_NE(rowOf("Vault").graphicsEffect(), nullptr);
  EXPECT_NE(button(rowOf("Vault"), "Cancel"), nullptr);
  for (const auto* child : rowOf("Vault").findChildren<QWidget*>())
    EXPECT_EQ(child->graphicsEffect(), nullptr);
}

TEST_F(StartupAppsPageTest, textsFitInTheListAndInItsToasts) {
  const QString longText = QStringLiteral("Keeps everything up to date in the background. ").repeated(4);
  auto off = row("Discord");
  off.isEnabled = false;
  off.description = longText.toStdString();
  auto long1 = row("An application whose name is as long as the names of some applications are");
  long1.isNewSinceLastVisit = true;
  openPage({heavy("Adobe Creative Cloud"), leftover("ARK Audio"), updater("Acme Updater"), off, long1});
  fakes::publish(startup->pendingUndo,
                 UndoAction{UndoAction::Kind::paused, "a", "Adobe Creative Cloud", Date(), std::nullopt});
  fakes::publish(startup->helperUnavailable,
                 HelperUnavailable{"Adobe Creative Cloud", Date(), HelperUnavailable::Reason::notResponding});
  scheduler.advance(1.0);
  settleWindows();
  for (auto* toast : toasts()) {
    expectTextsFit(*toast, toast->accessibleName());
    toast->hide();  // covers the rows
  }
  expectTextsFit(*page, QStringLiteral("list"), {QStringLiteral("Find an app…")});
  type("zzz");
  expectTextsFit(*page, QStringLiteral("no match"), {QStringLiteral("Find an app…")});
}

TEST_F(StartupAppsPageTest, theLinesOfANoticeAreTwentyPointsApart) {
  openPage({});
  const auto drawn = textsDrawnBy(*page);
  ASSERT_EQ(drawn.size(), 3) << "the heading and two lines";
  EXPECT_NEAR(drawn[2].ink.bottom() - drawn[1].ink.bottom(), 20.0, 1.0);
}

// Writes pictures for people to look at into the folder VORLI_PICTURES, if that is set.
TEST_F(StartupAppsPageTest, everyStateCanBeDrawn) {
  const char* folder = std::getenv("VORLI_PICTURES");
  const auto draw = [&](const QString& name, Appearance look) {
    for (const double ratio : {1.0, 2.0}) {
      QImage image((QSizeF(window->size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
      image.setDevicePixelRatio(ratio);
      image.fill(WindowPalette::of(look).surface);
      window->render(&image, {}, {}, QWidget::DrawChildren);
      EXPECT_FALSE(image.isNull());
      if (!folder) continue;
      image.save(QStringLiteral("%1/sneaky-%2-%3-%4x.png")
                     .arg(QString::fromUtf8(folder), name, look == Appearance::dark ? "dark" : "light")
                     .arg(ratio));
    }
  };
  for (const auto look : {Appearance::light, Appearance::dark}) {
    auto hog = heavy("Adobe Creative Cloud");
    hog.description = "Keeps Adobe apps up to date and signs you in automatically.";
    auto old = leftover("ARK Audio");
    old.description = "Handles audio routing for apps like these two, in a sentence that takes two lines.";
    auto off = row("Discord");
    off.isEnabled = false;
    off.description = "Stays ready in the background so messages and calls come through right away.";
    auto fresh = updater("Chrome Updater");
    fresh.isNewSinceLastVisit = true;
    fresh.footprint = StartupItem::Footprint::medium;
    openPage({hog, old, fresh, off}, look);
    draw("list", look);
    bar().setValue(bar().maximum());
    draw("end", look);
    fakes::publish(startup->pendingUndo,
                   UndoAction{UndoAction::Kind::paused, "a", "A", Date(), std::nullopt});
    fakes::publish(startup->helperUnavailable, HelperUnavailable{"Google Chrome Updater", Date(),
                                                                 HelperUnavailable::Reason::notApproved});
    scheduler.runReady();
    settleWindows();
    scheduler.advance(0.5);
    draw("toasts", look);
    type("nothing");
    draw("no-match", look);
    openPage({row("Vault", asking)}, look);
    button(rowOf("Vault"), "Disable")->click();
    scheduler.runReady();
    settleWindows();
    scheduler.advance(0.5);
    draw("question", look);
    openPage({}, look);
    draw("nothing", look);
    lookForItems();
    draw("looking", look);
    fakes::publish(startup->isScanning, false);
  }
}

}  // namespace
}  // namespace vorli::ui

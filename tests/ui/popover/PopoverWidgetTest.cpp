#include "tests/fakes/Publish.h"
#include "tests/ui/popover/PopoverWidgetFixture.h"
#include "ui/popover/PopoverWidget.h"

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QTextDocument>
#include <QtTest/qtestspontaneevent.h>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace vorli::ui {
namespace {

using Id = PopoverControlId;

struct PopoverWidgetTest : PopoverWidgetFixture {};

constexpr const char* readyPolish =
    "button | Polish | Frees memory and flushes caches. Takes about three seconds. | Your Mac is full. Time "
    "to polish it.";
constexpr const char* settingsButton = "button | Settings | Open Vorli settings. | ";

TEST_F(PopoverWidgetTest, everythingShownIsSpoken) {
  open();
  EXPECT_THAT(spoken(), testing::UnorderedElementsAre(
                            readyPolish, "text | Your Mac is full. Time to polish it. |  | ",
                            "text | Chrome and Figma are using the most right now. |  | ",
                            "button | Quit Chrome | Closes Chrome right away. It can still launch later. | ",
                            "button | Quit Figma | Closes Figma right away. It can still launch later. | ",
                            settingsButton));
}

TEST_F(PopoverWidgetTest, calmRingSaysThatThereIsNothingToPolish) {
  open();
  showState(0.1);
  EXPECT_THAT(
      spoken(),
      testing::UnorderedElementsAre(
          "button | Polish (disabled) | Your Mac doesn't need polishing right now. | Your Mac feels great.",
          "text | Your Mac feels great. |  | ", settingsButton));
}

TEST_F(PopoverWidgetTest, questionWhetherToQuitIsSpokenWithItsAnswers) {
  open();
  click(Id::firstName);
  scheduler.advance(1.0);
  EXPECT_THAT(spoken(),
              testing::UnorderedElementsAre(readyPolish, "text | Your Mac is full. Time to polish it. |  | ",
                                            "text | Quit Chrome? |  | ", "button | Cancel |  | ",
                                            "button | Quit |  | ", settingsButton));
}

TEST_F(PopoverWidgetTest, sentenceWithoutNamesIsSpokenWhereItIsShown) {
  open();
  const QRect status = spokenPlace("Your Mac is full. Time to polish it.");
  workspace.add(1000, SharedText("Chrome"), SharedText("org.chrome"));
  workspace.refusing = {1000};
  click(Id::firstName);
  scheduler.advance(1.0);
  const QRect sentence = spokenPlace("Chrome has to be closed by hand on this desktop.");
  EXPECT_GT(sentence.top(), status.top());
  EXPECT_GT(sentence.height(), 10);
  EXPECT_LT(sentence.height(), 50);
}

TEST_F(PopoverWidgetTest, linkAndBannerAreSpokenInTheirOwnWords) {
  open();
  fakes::publish(view->postClearSentence, "A gentle tidy. Couldn't reach the helper for a full polish.");
  fakes::publish(view->postClearPercentage, 12);
  scheduler.advance(1.0);
  const auto lines = spoken();
  EXPECT_THAT(lines, testing::Contains("text | 12 percent lighter |  | "));
  EXPECT_THAT(lines,
              testing::Contains("link | Open Settings | Opens System Settings to Login Items so you can "
                                "approve Vorli's background helper. | "));
}

TEST_F(PopoverWidgetTest, valueOfTheButtonIsAlsoReadableAsText) {
  open();
  const auto textOf = [this](Id id) {
    auto* text = QAccessible::queryAccessibleInterface(control(id))->textInterface();
    return text ? text->text(0, -1) : QStringLiteral("none");
  };
  EXPECT_EQ(textOf(Id::polish), "Your Mac is full. Time to polish it.");
  EXPECT_EQ(textOf(Id::gear), "none");
  showState(0.6);
  EXPECT_EQ(textOf(Id::polish), "Your Mac is starting to fill up.");
}

TEST_F(PopoverWidgetTest, windowIsADialog) {
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&*widget)->role(), QAccessible::Dialog);
}

TEST_F(PopoverWidgetTest, assistiveToolsCanPress) {
  open();
  auto* interface = QAccessible::queryAccessibleInterface(control(Id::firstName));
  ASSERT_TRUE(interface->actionInterface());
  interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(view->confirmingQuitName().get(), "Chrome");
}

TEST_F(PopoverWidgetTest, controlsHaveToolTips) {
  open();
  EXPECT_EQ(control(Id::polish)->toolTip(), "Tap to polish your Mac");
  EXPECT_EQ(control(Id::secondName)->toolTip(), "Click to quit Figma");
}

TEST_F(PopoverWidgetTest, nameThatLooksLikeMarkupIsNotInterpreted) {
  hogs[0].name = hogs[0].displayName = "Notes <b>beta";
  open();
  EXPECT_THAT(spoken(),
              testing::Contains("text | Notes <b>beta and Figma are using the most right now. |  | "));
  QTextDocument tip;
  tip.setHtml(control(Id::firstName)->toolTip());
  EXPECT_EQ(tip.toPlainText(), "Click to quit Notes <b>beta");
  EXPECT_TRUE(Qt::mightBeRichText(control(Id::firstName)->toolTip()));
}

TEST_F(PopoverWidgetTest, returnPolishesWhileNothingElseHasTheFocus) {
  open();
  press(Qt::Key_Return);
  EXPECT_TRUE(view->isReleasing);
}

TEST_F(PopoverWidgetTest, keyThatIsHeldDownCountsOnce) {
  open();
  log.clear();
  hold(Qt::Key_Return, 30);
  EXPECT_TRUE(view->isReleasing);
  const auto lines = popoverLines();
  EXPECT_EQ(
      std::ranges::count_if(lines, [](const auto& line) { return line.starts_with("handleTap entered"); }),
      1);
}

TEST_F(PopoverWidgetTest, escapeThatIsHeldDownCancelsTheQuestionAndDoesNotClose) {
  open();
  click(Id::firstName);
  hold(Qt::Key_Escape, 30);
  EXPECT_EQ(view->confirmingQuitName().get(), std::nullopt);
  EXPECT_EQ(escapes, 0);
}

TEST_F(PopoverWidgetTest, firstTabShowsTheFocusAndTheNextOnesMoveIt) {
  open();
  control(Id::polish)->setFocus(Qt::ActiveWindowFocusReason);
  EXPECT_FALSE(control(Id::polish)->showsFocus());
  std::vector<Id> order;
  for (int i = 0; i < 5; ++i) {
    press(Qt::Key_Tab);
    auto* focused = dynamic_cast<PopoverControl*>(widget->focusWidget());
    ASSERT_TRUE(focused);
    EXPECT_TRUE(focused->showsFocus());
    order.push_back(focused->id());
  }
  EXPECT_EQ(order, (std::vector{Id::polish, Id::firstName, Id::secondName, Id::gear, Id::polish}));
}

TEST_F(PopoverWidgetTest, returnPressesWhatHasTheFocus) {
  open();
  control(Id::secondName)->setFocus(Qt::TabFocusReason);
  press(Qt::Key_Return);
  EXPECT_EQ(view->confirmingQuitName().get(), "Figma");
  EXPECT_FALSE(view->isReleasing);
}

TEST_F(PopoverWidgetTest, questionPutsTheFocusOnCancel) {
  open();
  control(Id::firstName)->setFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  scheduler.advance(1.0);
  EXPECT_TRUE(control(Id::cancel)->hasFocus());
  EXPECT_TRUE(control(Id::cancel)->showsFocus());
  press(Qt::Key_Tab);
  EXPECT_TRUE(control(Id::quit)->hasFocus());
}

TEST_F(PopoverWidgetTest, questionThatIsStillOpenAtTheNextOpeningTakesTheFocus) {
  open();
  click(Id::firstName);
  scheduler.advance(1.0);
  close();
  open();
  ASSERT_EQ(view->confirmingQuitName().get(), "Chrome");
  EXPECT_TRUE(control(Id::cancel)->hasFocus());
  press(Qt::Key_Return);
  EXPECT_EQ(view->confirmingQuitName().get(), std::nullopt);
  EXPECT_FALSE(view->isReleasing);
}

TEST_F(PopoverWidgetTest, questionAfterAClickWithTheMouseShowsNoFocus) {
  open();
  click(Id::firstName);
  scheduler.advance(1.0);
  EXPECT_TRUE(control(Id::cancel)->hasFocus());
  EXPECT_FALSE(control(Id::cancel)->showsFocus());
}

TEST_F(PopoverWidgetTest, escapeCancelsTheQuestionAndOnlyThenCloses) {
  open();
  click(Id::firstName);
  press(Qt::Key_Escape);
  EXPECT_EQ(view->confirmingQuitName().get(), std::nullopt);
  EXPECT_EQ(escapes, 0);
  press(Qt::Key_Escape);
  EXPECT_EQ(escapes, 1);
}

TEST_F(PopoverWidgetTest, closeByTheWindowManagerRollsUpAndTheProgramsOwnIsNotRefused) {
  open();
  QCloseEvent byTheUser;
  QSpontaneKeyEvent::setSpontaneous(&byTheUser);
  qApp->notify(&*widget, &byTheUser);  // with sendEvent it would count as the program's own event
  EXPECT_FALSE(byTheUser.isAccepted());
  EXPECT_EQ(escapes, 1);
  QCloseEvent byTheProgram;
  QApplication::sendEvent(&*widget, &byTheProgram);
  EXPECT_TRUE(byTheProgram.isAccepted());
  EXPECT_EQ(escapes, 1);
}

TEST_F(PopoverWidgetTest, ringIsPressedOnItsDiscAlone) {
  open();
  auto* ring = control(Id::polish);
  EXPECT_EQ(ring->size(), QSize(112, 112));
  EXPECT_EQ(widget->childAt(ring->geometry().center()), ring);
  EXPECT_NE(widget->childAt(ring->geometry().topLeft() + QPoint(4, 4)), ring);
}

TEST_F(PopoverWidgetTest, pointerOnTheRingIsReportedToTheView) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  EXPECT_TRUE(view->hovered);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(control(Id::polish), &leave);
  EXPECT_FALSE(view->hovered);
}

TEST_F(PopoverWidgetTest, replacementWindowWaitsForThePointer) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  ASSERT_TRUE(view->hovered);
  widget.emplace(scheduler, *view, Compositing::absent,
                 PopoverWidget::Callbacks{[] {}, [] {}, [](const QRect&) {}});
  widget->begin();
  EXPECT_FALSE(view->hovered);
}

TEST_F(PopoverWidgetTest, closingForgetsThePointer) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  widget->hide();
  widget->end();
  EXPECT_FALSE(view->hovered);
}

/// Everything that a window is asked to paint.
struct PaintWatch : QObject {
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted |= static_cast<QPaintEvent*>(event)->region();
    return false;
  }
  QRegion painted;
};

// Frames are counted as they are asked for: each ends in a paint event of the window.
struct PopoverFramesTest : PopoverWidgetTest {
  std::uint64_t framesIn(double seconds) {
    QApplication::processEvents();
    const auto before = widget->framesPainted();
    for (int i = 0; i < static_cast<int>(seconds * 240.0); ++i) {
      scheduler.advance(1.0 / 240.0);
      QApplication::processEvents();
    }
    return widget->framesPainted() - before;
  }
};

TEST_F(PopoverFramesTest, restingPopoverPaintsTenTimesASecond) {
  open();
  scheduler.advance(5.0);
  EXPECT_NEAR(static_cast<double>(framesIn(2.0)), 20.0, 1.0);
}

TEST_F(PopoverFramesTest, ringAndSparksOfAPolishKeepThePaceOfTheScreen) {
  open();
  scheduler.advance(5.0);
  press(Qt::Key_Return);
  framesIn(0.6);  // the label's and the card's own motions are just as fast
  EXPECT_NEAR(static_cast<double>(framesIn(1.0)), 60.0, 5.0);
  framesIn(1.9);  // to 3.5, where the sparks are out and the ring still bounces
  EXPECT_NEAR(static_cast<double>(framesIn(0.5)), 30.0, 3.0);
  // All is at rest except for the breath; the sparks are out, and are removed later.
  framesIn(0.1);
  EXPECT_NEAR(static_cast<double>(framesIn(0.5)), 5.0, 2.0);
}

TEST_F(PopoverFramesTest, ringThatFollowsTheMonitorKeepsThePaceOfTheScreen) {
  open();
  scheduler.advance(5.0);
  publishRing(0.3);
  scheduler.advance(2.0);
  publishRing(0.5);
  EXPECT_NEAR(static_cast<double>(framesIn(0.5)), 30.0, 3.0);
  EXPECT_NEAR(static_cast<double>(framesIn(0.6)), 9.0, 4.0);  // the end, then the breath
}

TEST_F(PopoverFramesTest, slowlyMovingRingCostsNoMoreThanTheBreath) {
  open();
  scheduler.advance(5.0);
  publishRing(0.9);
  scheduler.advance(2.0);
  framesIn(1.0);
  for (const double ring : {0.904, 0.899, 0.903}) {
    publishRing(ring);
    EXPECT_LE(framesIn(2.0), 22U);
    EXPECT_EQ(view->ringProgress(scheduler.now()), ring);
  }
}

TEST_F(PopoverFramesTest, ticksThatMoveTheRingALittleAddNoFramesToTheBreath) {
  open();
  scheduler.advance(5.0);
  publishRing(0.9);
  framesIn(1.05);
  const auto before = widget->framesPainted();
  for (const double ring : {0.904, 0.899, 0.903, 0.9, 0.905}) {
    fakes::publish(monitor.topMemoryHogs, hogs);
    publishRing(ring);
    framesIn(2.05);  // so that ticks come between two breaths
  }
  EXPECT_NEAR(static_cast<double>(widget->framesPainted() - before), 102.0, 1.5);
}

TEST_F(PopoverFramesTest, dotsSpringAtThePaceOfTheScreen) {
  open();
  showState(0.1);
  scheduler.advance(5.0);
  view->setHovered(true);
  framesIn(0.2);  // the word has faded
  EXPECT_NEAR(static_cast<double>(framesIn(0.25)), 15.0, 3.0);
}

TEST_F(PopoverFramesTest, nothingIsPaintedWhileClosed) {
  open();
  widget->hide();
  widget->end();
  EXPECT_EQ(framesIn(3.0), 0U);
  EXPECT_EQ(scheduler.earliestDeadline() < scheduler.now() + 1.0 / 10.0, false);
}

TEST_F(PopoverFramesTest, nothingMovesAtRestWithReducedMotion) {
  motion.setReduced(true);
  open();
  scheduler.advance(5.0);
  EXPECT_EQ(framesIn(3.0), 0U);
}

TEST_F(PopoverFramesTest, fadingCalmIsPaintedThoughNothingElseMoves) {
  motion.setReduced(true);
  open();
  fakes::publish(clearState.calmIntensity, 0.9);
  widget->scene().setHovered(Id::gear, true);  // wakes it
  framesIn(1.0);
  const auto painted = framesIn(0.5);
  EXPECT_EQ(painted, 0U);
  std::uint64_t frames = 0;
  for (int i = 0; i < 6; ++i) {
    fakes::publish(clearState.calmIntensity, 0.8 - i * 0.1);
    frames += framesIn(1.0 / 10.0);
  }
  EXPECT_NEAR(static_cast<double>(frames), 6.0, 1.0);
}

TEST_F(PopoverFramesTest, foldedContentIsStill) {
  open();
  notifications.post(VorliAnimateDismiss{});
  framesIn(0.5);
  EXPECT_EQ(framesIn(1.0), 0U);
}

TEST_F(PopoverFramesTest, cardUnfoldsFromItsStripAndOvershoots) {
  open();
  widget->scene().setCardHeight(24.0);
  framesIn(0.1);
  EXPECT_EQ(widget->card().height(), 24);
  widget->scene().moveCard(304.0, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  int tallest = 0;
  for (int i = 0; i < 30; ++i) {
    framesIn(1.0 / 60.0);
    tallest = std::max(tallest, widget->card().height());
  }
  EXPECT_EQ(widget->card().height(), 304);
  EXPECT_GT(tallest, 304);
  EXPECT_LE(tallest, 304 + 6);  // for which the window has room
}

TEST_F(PopoverFramesTest, nothingMovesBeforeTheFirstFrameIsSeen) {
  widget->scene().setCardHeight(24.0);
  widget->begin();
  widget->show();
  widget->paintAhead();
  widget->scene().moveCard(304.0, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  scheduler.advance(0.1);
  EXPECT_EQ(widget->card().height(), 24);
  EXPECT_EQ(widget->framesPainted(), 0U);
  QApplication::processEvents();
  EXPECT_EQ(widget->framesPainted(), 1U);
  scheduler.advance(0.05);
  EXPECT_GT(widget->card().height(), 100);
}

TEST_F(PopoverFramesTest, frameThatWasPaintedAheadIsThatOfItsTime) {
  widget->begin();
  widget->show();
  widget->paintAhead();
  const QImage ahead = widget->grab().toImage();
  const QImage inTime = widget->grab().toImage();
  EXPECT_EQ(widget->framesPainted(), 2U);
  EXPECT_EQ(ahead, inTime);
}

TEST_F(PopoverFramesTest, onlyAnUnseenCardIsPaintedAhead) {
  widget->scene().setCardHeight(24.0);
  widget->begin();
  widget->show();
  QApplication::processEvents();
  widget->paintAhead();
  widget->scene().moveCard(304.0, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  scheduler.advance(0.05);
  EXPECT_GT(widget->card().height(), 100);
}

TEST_F(PopoverFramesTest, withLessMovementTheCardIsOpenAtOnce) {
  motion.setReduced(true);
  open();
  widget->scene().setCardHeight(24.0);
  widget->scene().moveCard(304.0, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  framesIn(0.01);
  EXPECT_EQ(widget->card().height(), 304);
  widget->scene().moveCard(24.0, Animation::timingCurve({0.55, 0.0, 0.78, 0.12}, 0.22));
  framesIn(0.3);
  EXPECT_EQ(widget->card().height(), 304);
}

TEST_F(PopoverFramesTest, cardAboveALowerPanelGrowsUpwards) {
  open();
  widget->scene().setEdge(PopoverScene::Edge::bottom);
  widget->scene().setCardHeight(304.0);
  framesIn(0.05);
  const int bottom = widget->card().bottom();
  widget->scene().setCardHeight(24.0);
  framesIn(0.05);
  EXPECT_EQ(widget->card().bottom(), bottom);
  EXPECT_EQ(widget->card().height(), 24);
  EXPECT_EQ(widget->restingCard().bottom(), bottom);
}

TEST_F(PopoverFramesTest, cardThatTurnsToItsOtherEdgeTakesItsPictureAndItsControlsAlong) {
  open();
  showState(0.1);
  widget->scene().setCardHeight(240.0);
  framesIn(5.0);
  const QRect ring = control(Id::polish)->geometry();
  PaintWatch watch;
  widget->installEventFilter(&watch);
  widget->scene().setEdge(PopoverScene::Edge::bottom);
  framesIn(0.01);
  EXPECT_EQ(watch.painted.boundingRect(), widget->rect());
  EXPECT_EQ(control(Id::polish)->geometry(), ring.translated(0, 70));  // from 16 under the top to 86
}

}  // namespace
}  // namespace vorli::ui

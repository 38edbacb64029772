#include <gmock/gmock.h>
// The fixture is written for a program that has both precompiled.
#include "tests/polish/PolishFixture.h"
#include "ui/popover/PopoverWidget.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QTextDocument>
#include <QtTest/qtestspontaneevent.h>
#include <optional>

namespace vorli::ui {
namespace {

using Id = PopoverControlId;

struct PopoverWidgetTest : PolishFixture {
  PopoverWidgetTest() {
    addProcess("Chrome", 3'000'000'000);
    addProcess("Figma", 2'000'000'000);
    monitor.refresh();
    widget.emplace(scheduler, *view, Compositing::present,
                   PopoverWidget::Callbacks{[this] { ++escapes; }, [] {}, [](const QRect&) {}});
  }
  ~PopoverWidgetTest() override { widget.reset(); }

  void addProcess(const std::string& name, std::uint64_t bytes) {
    ProcessSnapshot process;
    process.id = static_cast<std::int32_t>(1000 + hogs.size());
    process.name = name;
    process.displayName = name;
    process.activationPolicy = ports::ActivationPolicy::regular;
    process.residentBytes = bytes;
    hogs.push_back(process);
  }

  /// As the host does: the view plays its opening, and the card takes the size it asks for.
  void open() {
    widget->begin();
    widget->show();
    notifications.post(VorliAnimateAppear{});
    view->animatedState = RingState::critical;
    view->animatedProgress = 0.91;
    monitor.topMemoryHogs = hogs;
    widget->scene().setCardHeight(view->desiredSize().height);
    scheduler.advance(1.0);
    QApplication::setActiveWindow(&*widget);
    QApplication::processEvents();
  }

  void close() {
    notifications.post(VorliAnimateDismiss{});
    scheduler.advance(0.3);
    widget->hide();
    widget->end();
  }

  void showState(double progress) {
    view->animatedProgress = progress;
    view->animatedState = ringState(progress);
    scheduler.advance(1.0);
  }

  void press(Qt::Key key) {
    QWidget* target = widget->focusWidget() ? widget->focusWidget() : &*widget;
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier), up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &down);
    QApplication::sendEvent(target, &up);
    scheduler.runReady();
  }

  PopoverControl* control(Id id) const {
    for (auto* found : widget->findChildren<PopoverControl*>()) {
      if (found->id() == id) return found;
    }
    return nullptr;
  }

  void click(Id id) {
    control(id)->click();
    scheduler.runReady();
  }

  /// What an assistive tool finds in the window: role, name, description and value of all that is shown.
  std::vector<std::string> spoken() {
    std::vector<std::string> lines;
    auto* root = QAccessible::queryAccessibleInterface(&*widget);
    for (int i = 0; i < root->childCount(); ++i) {
      auto* child = root->child(i);
      if (child->state().invisible) continue;
      QString line = child->role() == QAccessible::Button ? "button"
                     : child->role() == QAccessible::Link ? "link"
                                                          : "text";
      for (const auto kind : {QAccessible::Name, QAccessible::Description, QAccessible::Value}) {
        const QString said = child->text(kind);
        line += " | " + said;
      }
      lines.push_back(line.toStdString());
    }
    return lines;
  }

  std::vector<ProcessSnapshot> hogs;
  std::optional<PopoverWidget> widget;
  int escapes = 0;
};

constexpr const char* readyPolish =
    "button | Polish | Frees memory and flushes caches. Takes about three seconds. | Your Mac is full. Time "
    "to polish it.";
constexpr const char* gear = "button | Settings | Open Vorli settings. | ";

TEST_F(PopoverWidgetTest, everythingShownIsSpoken) {
  open();
  EXPECT_THAT(spoken(),
              testing::UnorderedElementsAre(
                  readyPolish, "text | Your Mac is full. Time to polish it. |  | ",
                  "text | Chrome and Figma are using the most right now. |  | ",
                  "button | Quit Chrome | Closes Chrome right away. It can still launch later. | ",
                  "button | Quit Figma | Closes Figma right away. It can still launch later. | ", gear));
}

TEST_F(PopoverWidgetTest, calmRingSaysThatThereIsNothingToPolish) {
  open();
  showState(0.1);
  EXPECT_THAT(
      spoken(),
      testing::UnorderedElementsAre(
          "button | Polish (disabled) | Your Mac doesn't need polishing right now. | Your Mac feels great.",
          "text | Your Mac feels great. |  | ", gear));
}

TEST_F(PopoverWidgetTest, questionWhetherToQuitIsSpokenWithItsAnswers) {
  open();
  click(Id::firstName);
  scheduler.advance(1.0);
  EXPECT_THAT(spoken(),
              testing::UnorderedElementsAre(readyPolish, "text | Your Mac is full. Time to polish it. |  | ",
                                            "text | Quit Chrome? |  | ", "button | Cancel |  | ",
                                            "button | Quit |  | ", gear));
}

TEST_F(PopoverWidgetTest, linkAndBannerAreSpokenInTheirOwnWords) {
  open();
  view->postClearSentence = "A gentle tidy. Couldn't reach the helper for a full polish.";
  view->postClearPercentage = 12;
  scheduler.advance(1.0);
  const auto lines = spoken();
  EXPECT_THAT(lines, testing::Contains("text | 12 percent lighter |  | "));
  EXPECT_THAT(lines,
              testing::Contains("link | Open Settings | Opens System Settings to Login Items so you can "
                                "approve Vorli's background helper. | "));
}

TEST_F(PopoverWidgetTest, valueOfTheButtonIsAlsoATextThatIsHandedOn) {
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

TEST_F(PopoverWidgetTest, windowIsADialogAndNoPieceOfOne) {
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

TEST_F(PopoverWidgetTest, nameThatLooksLikeMarkupIsToldAsItIs) {
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

TEST_F(PopoverWidgetTest, windowManagersWishToCloseRollsUpAndTheProgramsOwnIsNotRefused) {
  open();
  QCloseEvent byTheUser;
  QSpontaneKeyEvent::setSpontaneous(&byTheUser);
  qApp->notify(&*widget, &byTheUser);  // sendEvent would make it the program's own
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

TEST_F(PopoverWidgetTest, pointerOnTheRingIsToldToTheView) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  EXPECT_TRUE(view->hovered);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(control(Id::polish), &leave);
  EXPECT_FALSE(view->hovered);
}

TEST_F(PopoverWidgetTest, windowThatTakesThePlaceOfAnotherWaitsForThePointer) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  ASSERT_TRUE(view->hovered);
  widget.emplace(scheduler, *view, Compositing::absent,
                 PopoverWidget::Callbacks{[] {}, [] {}, [](const QRect&) {}});
  widget->begin();
  EXPECT_FALSE(view->hovered);
}

TEST_F(PopoverWidgetTest, nameThatLeavesWhileItIsHeldDownComesBackReleased) {
  open();
  auto* name = control(Id::secondName);
  QMouseEvent down(QEvent::MouseButtonPress, {5, 5}, {5, 5}, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(name, &down);
  ASSERT_TRUE(name->isDown());
  const auto press = [this] {
    return widget->scene().picture(scheduler.now()).words.culprits->names.at(1).press;
  };
  scheduler.advance(1.0);
  ASSERT_EQ(press(), 1.0);
  monitor.topMemoryHogs = std::vector{hogs[0]};
  scheduler.advance(1.0);
  ASSERT_FALSE(name->isVisible());
  monitor.topMemoryHogs = hogs;
  scheduler.advance(1.0);
  ASSERT_TRUE(name->isVisible());
  EXPECT_FALSE(name->isDown());
  EXPECT_EQ(press(), 0.0);
}

TEST_F(PopoverWidgetTest, closingForgetsThePointer) {
  open();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control(Id::polish), &enter);
  widget->hide();
  widget->end();
  EXPECT_FALSE(view->hovered);
}

/// All that a window is asked to paint.
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

TEST_F(PopoverFramesTest, sparksFlyAtThePaceOfTheScreenAndTheRestOfAPolishAtHalfOfIt) {
  open();
  scheduler.advance(5.0);
  press(Qt::Key_Return);
  framesIn(0.6);  // the label's and the card's own motions are as quick
  EXPECT_NEAR(static_cast<double>(framesIn(1.0)), 60.0, 5.0);
  framesIn(1.9);  // to 3.5, where the sparks are out and the ring still bounces
  EXPECT_NEAR(static_cast<double>(framesIn(0.5)), 15.0, 2.0);
  // At rest but for the breath; the sparks, which are put away later, are out.
  framesIn(0.1);
  EXPECT_NEAR(static_cast<double>(framesIn(0.5)), 5.0, 2.0);
}

TEST_F(PopoverFramesTest, nothingIsPaintedWhileItIsShut) {
  open();
  widget->hide();
  widget->end();
  EXPECT_EQ(framesIn(3.0), 0U);
  EXPECT_EQ(scheduler.earliestDeadline() < scheduler.now() + 1.0 / 10.0, false);
}

TEST_F(PopoverFramesTest, nothingMovesAtRestForWhoAskedForLessMovement) {
  motion.setReduced(true);
  open();
  scheduler.advance(5.0);
  EXPECT_EQ(framesIn(3.0), 0U);
}

TEST_F(PopoverFramesTest, calmThatLeavesIsPaintedThoughNothingElseMoves) {
  motion.setReduced(true);
  open();
  clearState.calmIntensity = 0.9;
  widget->scene().setHovered(Id::gear, true);  // wakes it
  framesIn(1.0);
  const auto painted = framesIn(0.5);
  EXPECT_EQ(painted, 0U);
  std::uint64_t frames = 0;
  for (int i = 0; i < 6; ++i) {
    clearState.calmIntensity = 0.8 - i * 0.1;
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

TEST_F(PopoverFramesTest, whatWasSeenAlreadyIsNotPaintedAhead) {
  widget->scene().setCardHeight(24.0);
  widget->begin();
  widget->show();
  QApplication::processEvents();
  widget->paintAhead();
  widget->scene().moveCard(304.0, Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, 0.34));
  scheduler.advance(0.05);
  EXPECT_GT(widget->card().height(), 100);
}

TEST_F(PopoverFramesTest, withLessMovementTheCardStandsAtOnce) {
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

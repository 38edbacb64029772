#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "ui/kit/GlassToggle.h"
#include "ui/kit/MovingValue.h"
#include "ui/kit/PaperWindow.h"
#include "ui/kit/Sidebar.h"

#include <QEnterEvent>
#include <QEvent>
#include <QImage>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace vorli::ui {
namespace {

struct MovingSheet final : PaperWindow {
  explicit MovingSheet(const WindowSurroundings& surroundings)
      : PaperWindow(surroundings, Qt::Window, QStringLiteral("A sheet"), CloseButton::absent) {
    setAttribute(Qt::WA_DeleteOnClose, false);
    setSheetSize({640, 300});
  }
};

struct MovingValueTest : testing::Test {
  MovingValueTest() {
    surroundings.moves.emplace(WindowMotion{scheduler, motion});
    sheet = std::make_unique<MovingSheet>(surroundings);
    sheet->show();
    settleWindows();
  }

  // A visible switch.
  GlassToggle& toggle() {
    auto* made =
        new GlassToggle({"bell", QStringLiteral("Gentle nudges"), QStringLiteral("A hint."), Tone::plain},
                        Appearance::light, sheet.get());
    made->setGeometry(20, 40, 600, 56);
    made->show();
    return *made;
  }

  fakes::ManualScheduler scheduler;
  fakes::MotionPreference motion;
  FakeSurroundings surroundings;
  std::unique_ptr<MovingSheet> sheet;
};

TEST_F(MovingValueTest, movesForItsTimeAndThenAsksForNothingMore) {
  int changes = 0;
  MovingValue value(*sheet, 0.0, [&changes] { ++changes; });
  value.moveTo(1.0, Animation::linear(0.2));
  EXPECT_EQ(value.shown(), 0.0);
  EXPECT_EQ(value.target(), 1.0);
  scheduler.advance(0.1);
  EXPECT_NEAR(value.shown(), 0.5, 1e-6);
  scheduler.advance(0.11);
  EXPECT_EQ(value.shown(), 1.0);
  scheduler.advance(0.02);
  const int frames = changes;
  EXPECT_GE(frames, 12);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  value.moveTo(1.0, Animation::linear(0.2));
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  EXPECT_EQ(changes, frames);
}

TEST_F(MovingValueTest, turnsRoundFromWhereItIs) {
  MovingValue value(*sheet, 0.0);
  value.moveTo(1.0, Animation::linear(0.2));
  scheduler.advance(0.1);
  value.moveTo(0.0, Animation::linear(0.2));
  EXPECT_NEAR(value.shown(), 0.5, 1e-6);
  scheduler.advance(0.1);
  EXPECT_NEAR(value.shown(), 0.25, 1e-6);
  value.jumpTo(0.0);
  EXPECT_EQ(value.shown(), 0.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(MovingValueTest, withLessMotionPlacesJumpAndColoursFadeQuickly) {
  motion.setReduced(true);
  MovingValue place(*sheet, 0.0), colour(*sheet, 0.0);
  place.moveTo(1.0, Animation::linear(0.2));
  EXPECT_EQ(place.shown(), 1.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  colour.fadeTo(1.0, 0.5);
  scheduler.advance(0.11);
  EXPECT_LT(colour.shown(), 1.0);
  scheduler.advance(0.01);
  EXPECT_EQ(colour.shown(), 1.0);
}

TEST_F(MovingValueTest, jumpsWhileInvisible) {
  QWidget hidden(sheet.get()), elsewhere;
  elsewhere.show();
  for (QWidget* widget : {&hidden, &elsewhere}) {
    MovingValue value(*widget, 0.0);
    value.fadeTo(1.0, 0.5);
    EXPECT_EQ(value.shown(), 1.0);
  }
  MovingValue value(*sheet, 0.0);
  value.moveTo(1.0, Animation::linear(10.0));
  sheet->hide();
  scheduler.advance(0.05);
  EXPECT_EQ(value.shown(), 1.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(MovingValueTest, mayEndWhileItMoves) {
  std::optional<MovingValue> value(std::in_place, *sheet, 0.0);
  value->moveTo(1.0, Animation::linear(0.2));
  value.reset();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(MovingValueTest, theKnobOfASwitchTravelsAndComesToRest) {
  auto& control = toggle();
  const QImage off = control.grab().toImage();
  control.click();
  EXPECT_EQ(control.grab().toImage(), off);
  scheduler.advance(0.1);
  const QImage between = control.grab().toImage();
  EXPECT_NE(between, off);
  scheduler.advance(2.0);
  const QImage on = control.grab().toImage();
  EXPECT_NE(on, between);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  motion.setReduced(true);
  control.click();
  scheduler.advance(0.2);
  EXPECT_EQ(control.grab().toImage(), off);
}

TEST_F(MovingValueTest, aHoveredControlFadesInAndOut) {
  auto& control = toggle();
  const QImage rest = control.grab().toImage();
  QEnterEvent enter({30, 10}, {30, 10}, {30, 10});
  QCoreApplication::sendEvent(&control, &enter);
  scheduler.advance(0.03);
  const QImage fading = control.grab().toImage();
  EXPECT_NE(fading, rest);
  scheduler.advance(0.2);
  const QImage hovered = control.grab().toImage();
  EXPECT_NE(hovered, fading);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&control, &leave);
  scheduler.advance(0.2);
  EXPECT_EQ(control.grab().toImage(), rest);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(MovingValueTest, thePlateOfTheTabsSlides) {
  Sidebar sidebar(
      {{"gearshape", "General", "General tab", ""}, {"bell", "Notifications", "Notifications tab", ""}},
      Appearance::light, sheet.get(), [](int) {});
  sidebar.setGeometry(0, 0, Sidebar::sidebarWidth, 300);
  sidebar.show();
  sidebar.select(0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  const QImage first = sidebar.grab().toImage();
  sidebar.select(1);
  scheduler.advance(0.1);
  const QImage between = sidebar.grab().toImage();
  scheduler.advance(0.2);
  const QImage second = sidebar.grab().toImage();
  EXPECT_NE(between, second);
  EXPECT_NE(first, second);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

}  // namespace
}  // namespace vorli::ui

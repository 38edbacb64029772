#include "tests/fakes/Publish.h"
#include "tests/ui/popover/PopoverWidgetFixture.h"
#include "ui/popover/PopoverControl.h"

#include <QApplication>
#include <QMouseEvent>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace vorli::ui {
namespace {

using Id = PopoverControlId;

struct PopoverControlTest : PopoverWidgetFixture {
  /// Presses or releases the left button of the mouse on the control.
  static void send(QEvent::Type type, PopoverControl& control) {
    const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
    QMouseEvent event(type, {5, 5}, {5, 5}, Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(&control, &event);
  }
};

TEST_F(PopoverControlTest, nameRemovedWhileHeldDownReturnsReleased) {
  open();
  auto* name = control(Id::secondName);
  send(QEvent::MouseButtonPress, *name);
  ASSERT_TRUE(name->isDown());
  const auto press = [this] {
    return widget->scene().picture(scheduler.now()).words.culprits->names.at(1).press;
  };
  scheduler.advance(1.0);
  ASSERT_EQ(press(), 1.0);
  fakes::publish(monitor.topMemoryHogs, std::vector{hogs[0]});
  scheduler.advance(1.0);
  ASSERT_FALSE(name->isVisible());
  fakes::publish(monitor.topMemoryHogs, hogs);
  scheduler.advance(1.0);
  ASSERT_TRUE(name->isVisible());
  EXPECT_FALSE(name->isDown());
  EXPECT_EQ(press(), 0.0);
}

TEST_F(PopoverControlTest, nameThatIsNotPaintedCannotBePressed) {
  open();
  auto other = hogs;
  other[0].name = other[0].displayName = "Brave";
  fakes::publish(monitor.topMemoryHogs, other);
  scheduler.advance(0.119);  // chrome is still painted while it fades
  ASSERT_EQ(widget->scene().paintedName(0), "Chrome");
  click(Id::firstName);
  EXPECT_EQ(view->confirmingQuitName().get(), std::nullopt);
  click(Id::secondName);  // painted before and after
  EXPECT_EQ(view->confirmingQuitName().get(), "Figma");
  view->quitCancelled();
  scheduler.advance(0.01);
  click(Id::firstName);
  EXPECT_EQ(view->confirmingQuitName().get(), "Brave");
}

TEST_F(PopoverControlTest, pressThatBeganOnAnotherNameOpensNoQuestion) {
  open();
  auto other = hogs;
  other[0].name = other[0].displayName = "Brave";
  auto* name = control(Id::firstName);
  send(QEvent::MouseButtonPress, *name);
  fakes::publish(monitor.topMemoryHogs, other);
  scheduler.advance(1.0);
  ASSERT_EQ(widget->scene().paintedName(0), "Brave");
  ASSERT_TRUE(name->isDown());
  send(QEvent::MouseButtonRelease, *name);
  EXPECT_EQ(view->confirmingQuitName().get(), std::nullopt);

  send(QEvent::MouseButtonPress, *name);
  send(QEvent::MouseButtonRelease, *name);
  EXPECT_EQ(view->confirmingQuitName().get(), "Brave");
}

}  // namespace
}  // namespace vorli::ui

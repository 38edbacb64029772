#include <gmock/gmock.h>
// The fixture is written for a program that has both precompiled.
#include "tests/polish/PolishFixture.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "ui/popover/PopoverPanel.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <QScreen>
#include <functional>
#include <optional>
#include <utility>

namespace vorli::ui {
namespace {

/// A panel of an ordinary desktop.
class PlainPanel final : public PopoverPanel {
 public:
  PlainPanel(Scheduler& scheduler, ItemPlace place, const WindowSurroundings& surroundings)
      : PopoverPanel(scheduler, std::move(place), surroundings) {}
  ~PlainPanel() override { unmount(); }

  using PopoverPanel::compositingChanged;
  using PopoverPanel::widget;

  void makeKey() override {}
  Subscription monitorPressesOutside(std::function<void()>) override { return {}; }

  int equipped = 0;  // windows

 private:
  std::optional<QRect> panelOf(const ClickAnchor&, const QList<ScreenPlace>&) const override { return {}; }
  std::optional<ClickAnchor> itemPlaceAfterChange() const override { return currentItemPlace(); }
  void equip(PopoverWidget&) override { ++equipped; }
  void left() override { performClose(); }
};

struct PopoverPanelTest : PolishFixture {
  PopoverPanelTest() {
    panel.setContentSize({270.0, 304.0});
    panel.mount(*view);
  }

  double cardHeight() const { return panel.widget().scene().picture(scheduler.now()).cardHeight; }
  static ClickAnchor itemAt(int x) { return {{x, 10}, {x - 10, 0, 20, 20}}; }

  FakeSurroundings surroundings;
  std::optional<ClickAnchor> item = itemAt(300);
  PlainPanel panel{scheduler, [this] { return item; }, surroundings};
};

TEST_F(PopoverPanelTest, openPopoverGetsANewWindowInPlaceWhenTheCompositorEnds) {
  ASSERT_TRUE(panel.show());
  const auto* first = &panel.widget();
  const QPoint place = first->pos();
  surroundings.composited = Compositing::absent;
  panel.compositingChanged();
  EXPECT_TRUE(panel.isShown());
  EXPECT_NE(&panel.widget(), first);
  EXPECT_TRUE(panel.widget().isVisible());
  EXPECT_EQ(panel.widget().pos(), place);
  EXPECT_EQ(cardHeight(), 304.0);
  EXPECT_EQ(panel.equipped, 2);
  panel.compositingChanged();  // another manager; the compositor is the same
  EXPECT_EQ(panel.equipped, 2);
}

TEST_F(PopoverPanelTest, endOfTheCompositorAffectsAClosedPopoverAtTheNextOpening) {
  ASSERT_TRUE(panel.show());
  panel.performClose();
  surroundings.composited = Compositing::absent;
  panel.compositingChanged();
  EXPECT_FALSE(panel.isShown());
  EXPECT_EQ(panel.equipped, 1);
  ASSERT_TRUE(panel.show());
  EXPECT_EQ(panel.equipped, 2);
  panel.performClose();
  ASSERT_TRUE(panel.show());
  EXPECT_EQ(panel.equipped, 2);
}

TEST_F(PopoverPanelTest, screenOfAnotherSizeMovesTheOpenPopoverToItsItem) {
  ASSERT_TRUE(panel.show());
  auto& screen = *panel.widget().screen();
  const QPoint place = panel.widget().pos();
  item = itemAt(350);
  Q_EMIT screen.geometryChanged(screen.geometry());
  EXPECT_EQ(panel.widget().pos(), place + QPoint(50, 0));
  panel.performClose();
  item = itemAt(300);
  Q_EMIT screen.geometryChanged(screen.geometry());
  EXPECT_EQ(panel.widget().pos(), place + QPoint(50, 0));
}

TEST_F(PopoverPanelTest, sameSizeLeavesTheMovementThatIsUnderWay) {
  ASSERT_TRUE(panel.show());
  panel.setContentSize({270.0, 24.0});
  EXPECT_EQ(cardHeight(), 24.0);
  panel.animateContentSize({270.0, 304.0}, Animation::linear(0.4));
  scheduler.advance(0.2);
  EXPECT_NEAR(cardHeight(), 164.0, 1e-6);
  panel.animateContentSize({270.0, 304.0}, Animation::linear(0.4));
  scheduler.advance(0.1);
  EXPECT_NEAR(cardHeight(), 234.0, 1e-6);
  EXPECT_EQ(panel.contentSize(), (ports::PopoverSize{270.0, 304.0}));
}

TEST_F(PopoverPanelTest, closedPopoverTakesASizeAtOnce) {
  ASSERT_TRUE(panel.show());
  panel.performClose();
  panel.animateContentSize({270.0, 240.0}, Animation::linear(0.4));
  EXPECT_EQ(cardHeight(), 240.0);
}

TEST_F(PopoverPanelTest, handlerDecidesWhetherItCloses) {
  bool may = false;
  panel.setShouldCloseHandler([&may] { return may; });
  ASSERT_TRUE(panel.show());
  panel.performClose();
  EXPECT_TRUE(panel.isShown());
  may = true;
  panel.performClose();
  EXPECT_FALSE(panel.isShown());
  EXPECT_FALSE(panel.widget().isVisible());
}

}  // namespace
}  // namespace vorli::ui

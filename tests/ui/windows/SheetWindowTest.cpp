#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "ui/windows/SheetWindow.h"

#include <QPointer>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

struct PlainSheet final : PaperWindow {
  explicit PlainSheet(const WindowSurroundings& surroundings)
      : PaperWindow(surroundings, Qt::Window, QStringLiteral("A sheet"), CloseButton::shown) {
    setSheetSize({300, 200});
  }
};

struct SheetWindowTest : testing::Test {
  SheetWindowTest() {
    window.setCloseHandler([this] { ++closings; });
  }
  ~SheetWindowTest() override { settleWindows(); }

  QPointer<PlainSheet> give() {
    auto* sheet = new PlainSheet(surroundings);
    window.take(sheet);
    return sheet;
  }

  FakeSurroundings surroundings;
  int closings = 0;
  SheetWindow window;
};

TEST_F(SheetWindowTest, theSheetIsShownUnderTheGivenTitle) {
  const auto sheet = give();
  EXPECT_FALSE(sheet->isVisible());
  window.open("Vorli");
  EXPECT_TRUE(sheet->isVisible());
  EXPECT_EQ(sheet->windowTitle(), "Vorli");
  EXPECT_EQ(surroundings.fronts, 1);
}

TEST_F(SheetWindowTest, aSheetClosedByTheUserIsDestroyed) {
  const auto sheet = give();
  window.open("Vorli");
  sheet->close();
  EXPECT_EQ(closings, 1);
  EXPECT_FALSE(window.hasSheet());
  settleWindows();
  EXPECT_TRUE(sheet.isNull());
}

TEST_F(SheetWindowTest, theCloseHandlerMayGiveTheNextSheet) {
  QPointer<PlainSheet> next;
  window.setCloseHandler([&] { next = give(); });
  give();
  window.open("Vorli");
  window.close();
  settleWindows();
  EXPECT_TRUE(window.hasSheet());
  window.open("Vorli");
  EXPECT_TRUE(next->isVisible());
}

TEST_F(SheetWindowTest, anotherSheetTakesThePlaceOfOneThatWasNotShown) {
  const auto first = give();
  const auto second = give();
  EXPECT_TRUE(first.isNull());
  window.open("Vorli");
  EXPECT_TRUE(second->isVisible());
  EXPECT_EQ(closings, 0);
}

TEST_F(SheetWindowTest, withoutASheetThereIsNothingToCloseOrToBringForward) {
  window.close();
  window.centerAndBringToFront();
  EXPECT_EQ(closings, 0);
  EXPECT_EQ(surroundings.fronts, 0);
}

}  // namespace
}  // namespace vorli::ui

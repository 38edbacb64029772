#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/SpokenElement.h"
#include "ui/kit/PaperWindow.h"

#include <QAccessible>
#include <QPointer>
#include <QWidget>
#include <gtest/gtest.h>
#include <vector>

namespace vorli::ui {
namespace {

struct ColouredSheet final : PaperWindow {
  explicit ColouredSheet(const WindowSurroundings& surroundings, Qt::WindowType type = Qt::Window)
      : PaperWindow(surroundings, type, QStringLiteral("A sheet"), CloseButton::shown) {
    setSheetSize({300, 200});
    followAppearance([this] { ++contents; });
  }

  using PaperWindow::appearance;
  int contents = 0;
};

TEST(PaperWindow, rebuildsItsContentOncePerChangeOfColours) {
  FakeSurroundings surroundings;
  ColouredSheet sheet(surroundings);
  surroundings.change(Appearance::light);
  EXPECT_EQ(sheet.contents, 0);
  surroundings.change(Appearance::dark);
  EXPECT_EQ(sheet.contents, 1);
  EXPECT_EQ(sheet.appearance(), Appearance::dark);
}

TEST(PaperWindow, isADialogForAssistiveToolsAndAnAlertWhereItInterrupts) {
  const FakeSurroundings surroundings;
  ColouredSheet sheet(surroundings);
  EXPECT_EQ(spokenElement(sheet), (SpokenElement{QAccessible::Dialog, "A sheet", "", ""}));
  ColouredSheet alert(surroundings, Qt::Dialog);
  EXPECT_EQ(spokenElement(alert), (SpokenElement{QAccessible::AlertMessage, "A sheet", "", ""}));
}

TEST(PaperWindow, keepsItsColoursOnceItIsClosed) {
  FakeSurroundings surroundings;
  const QPointer<ColouredSheet> sheet = new ColouredSheet(surroundings);
  sheet->present();
  sheet->close();
  ASSERT_FALSE(sheet.isNull());
  surroundings.change(Appearance::dark);
  EXPECT_EQ(sheet->contents, 0);
  settleWindows();
  EXPECT_TRUE(sheet.isNull());
}

TEST(PaperWindow, reportsItsEndOnceItsContentIsDestroyed) {
  FakeSurroundings surroundings;
  auto* sheet = new ColouredSheet(surroundings);
  const QPointer<QWidget> content = new QWidget(sheet);
  std::vector<bool> contentLeft;
  surroundings.afterWindow = [&] { contentLeft.push_back(!content.isNull()); };
  sheet->present();
  sheet->close();
  EXPECT_TRUE(contentLeft.empty());
  settleWindows();
  EXPECT_EQ(contentLeft, std::vector{false});
}

}  // namespace
}  // namespace vorli::ui

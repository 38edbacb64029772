#include "tests/ui/windows/ShownWidgets.h"
#include "tests/ui/windows/SpokenElement.h"
#include "tests/ui/windows/StartupAppsPageFixture.h"
#include "ui/kit/CalloutPanel.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/windows/StartupAppRowWidget.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QEnterEvent>
#include <QHoverEvent>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace vorli::ui {
namespace {

struct StartupAppRowWidgetTest : StartupAppsPageFixture {
  /// Opens the page with this item as its only row.
  StartupAppRowWidget& open(StartupItem item) {
    item.description = "Keeps things up to date.";
    const std::string id = item.id;
    openPage({std::move(item)});
    return rowOf(id);
  }
  SpokenElement spokenButton(StartupAppRowWidget& row, const QString& text) {
    auto* found = button(row, text);
    EXPECT_NE(found, nullptr) << text.toStdString();
    return found ? spokenElement(*found) : SpokenElement();
  }
  static CalloutPanel& panelOf(StartupAppRowWidget& row) {
    const auto panels = shownWidgets<CalloutPanel>(row);
    EXPECT_EQ(panels.size(), 1);
    return *panels.at(0);
  }
};

TEST_F(StartupAppRowWidgetTest, aRunningRowSaysWhatItIsAndWhatItsButtonsDo) {
  auto running = row("Agent");
  running.isRunning = true;
  running.runningAppBundleID = "com.acme.agent";
  running.installerName = "Acme";
  auto& shown = open(running);
  EXPECT_EQ(
      spokenElement(shown),
      (SpokenElement{QAccessible::ListItem,
                     "Agent, Keeps things up to date., Small and quiet, Hidden install, by Acme", "", ""}));
  EXPECT_EQ(spokenButton(shown, "Disable"),
            (SpokenElement{QAccessible::Button, "Disable Agent", "",
                           "Stops Agent launching at login. You can re-enable any time."}));
  EXPECT_EQ(spokenButton(shown, "Quit"),
            (SpokenElement{QAccessible::Button, "Quit Agent", "available",
                           "Closes Agent now. It can still launch later if it stays enabled."}));
  EXPECT_TRUE(button(shown, "Quit")->isEnabled());
  EXPECT_EQ(button(shown, "Disable")->toolTip(),
            "Stop this app from launching at login. You can re-enable it any time.");
  EXPECT_EQ(button(shown, "Quit")->toolTip(),
            "Quit the running app now. It can still launch later if you keep it enabled.");
}

TEST_F(StartupAppRowWidgetTest, aRowThatDoesNotRunCannotBeQuitAndSaysSo) {
  auto& shown = open(row("Agent"));
  EXPECT_EQ(spokenElement(shown).name, "Agent, Keeps things up to date., Idle, Hidden install");
  EXPECT_EQ(spokenButton(shown, "Quit"),
            (SpokenElement{QAccessible::Button, "Quit Agent", "unavailable, app is not running",
                           "Closes Agent now. It can still launch later if it stays enabled."}));
  EXPECT_FALSE(button(shown, "Quit")->isEnabled());
  EXPECT_EQ(button(shown, "Quit")->toolTip(), "Nothing to quit - this app isn't currently running.");
}

TEST_F(StartupAppRowWidgetTest, aNewDisabledRowSaysBothAndOffersToBeEnabled) {
  auto off = row("Agent");
  off.isEnabled = false;
  off.isNewSinceLastVisit = true;
  auto& shown = open(off);
  EXPECT_EQ(spokenElement(shown).name,
            "Agent, new since your last visit, disabled, Keeps things up to date., Disabled, Hidden install");
  EXPECT_EQ(spokenButton(shown, "Enable"),
            (SpokenElement{QAccessible::Button, "Enable Agent", "", "Lets Agent launch at login again."}));
  EXPECT_EQ(button(shown, "Enable")->toolTip(), "Re-enable this app so it can launch at login.");
  EXPECT_EQ(button(shown, "Disable"), nullptr);
}

TEST_F(StartupAppRowWidgetTest, aLeftoverSaysSoAndCanOnlyBeRemoved) {
  auto& shown = open(leftover("Agent"));
  EXPECT_EQ(spokenElement(shown).name,
            "Agent, leftover, safe to remove, Keeps things up to date., Idle, Hidden install");
  const SpokenElement remove{QAccessible::Button, "Remove Agent", "",
                             "Deletes this leftover login item. You can undo for a few seconds."};
  EXPECT_EQ(spokenButton(shown, "Remove"), remove);
  EXPECT_EQ(button(shown, "Remove")->toolTip(),
            "Delete this leftover login item. You can undo for a few seconds.");
  EXPECT_EQ(shownWidgets<GlassPillButton>(shown).size(), 1);
}

TEST_F(StartupAppRowWidgetTest, aRowWithoutAFileSaysWhereItIsTurnedOff) {
  auto managed = row("Agent");
  managed.plistURL = std::nullopt;
  auto& shown = open(managed);
  EXPECT_EQ(spokenButton(shown, "Disable"),
            (SpokenElement{QAccessible::Button, "Disable Agent", "",
                           "Opens your system's startup settings, where you can turn this off."}));
  EXPECT_EQ(button(shown, "Disable")->toolTip(),
            "Managed by your system. Click to open its startup settings.");
}

TEST_F(StartupAppRowWidgetTest, aCalloutIsAGroupWhoseAnswersSayTheAdvice) {
  auto& shown = open(heavy("Hog"));
  const QString body =
      "You can safely pause it. Hog will still open when you need it, just without waking up in the "
      "background.";
  auto& panel = panelOf(shown);
  EXPECT_EQ(spokenElement(panel),
            (SpokenElement{QAccessible::Grouping, "This one is holding a lot in the background.", "", body}));
  EXPECT_EQ(spokenElement(panel.acceptButton()), (SpokenElement{QAccessible::Button, "Pause it", "", body}));
  EXPECT_EQ(spokenElement(panel.refuseButton()),
            (SpokenElement{QAccessible::Button, "Keep it on", "", body}));
}

// Cancel gets the focus, so its description explains the question.
TEST_F(StartupAppRowWidgetTest, aQuestionIsAGroupWhoseAnswersSayWhatItMeans) {
  const QString body = "This app might be doing something important. You can turn it back on any time.";
  const auto expectQuestion = [&](StartupAppRowWidget& shown, const QString& verb) {
    button(shown, verb)->click();
    scheduler.runReady();
    auto& panel = panelOf(shown);
    EXPECT_EQ(spokenElement(panel),
              (SpokenElement{QAccessible::Grouping, verb + QStringLiteral(" Vault?"), "", body}));
    EXPECT_EQ(spokenElement(panel.acceptButton()), (SpokenElement{QAccessible::Button, verb, "", body}));
    EXPECT_EQ(spokenElement(panel.refuseButton()), (SpokenElement{QAccessible::Button, "Cancel", "", body}));
    EXPECT_EQ(window->focusWidget(), &panel.refuseButton());
  };
  auto running = row("Vault", asking);
  running.runningAppBundleID = "com.acme.vault";
  expectQuestion(open(running), "Disable");
  expectQuestion(open(running), "Quit");
  auto old = leftover("Vault");
  old.requiresConfirmation = true;
  expectQuestion(open(old), "Remove");
}

TEST_F(StartupAppRowWidgetTest, aPanelStaysBelowItsRowWhenTheRowGrows) {
  auto hog = heavy("Hog");
  hog.description = "Short.";
  openPage({hog});
  const double low = rowOf("Hog").rowHeight();
  EXPECT_EQ(panelOf(rowOf("Hog")).y(), static_cast<int>(low));
  for (int i = 0; i < 5; ++i) hog.description += " Keeps everything up to date in the background.";
  show({hog});
  EXPECT_GT(rowOf("Hog").rowHeight(), low);
  EXPECT_EQ(panelOf(rowOf("Hog")).y(), static_cast<int>(rowOf("Hog").rowHeight()));
}

TEST_F(StartupAppRowWidgetTest, aRowLightsUpUnderThePointerAndItsPanelDoesNot) {
  openPage({heavy("Hog"), row("Mouse")});
  auto& hog = rowOf("Hog");
  const int rowHeight = static_cast<int>(hog.rowHeight());
  const QRect rowArea(0, 0, hog.width(), rowHeight);
  const QRect below(0, rowHeight, hog.width(), hog.height() - rowHeight);
  const QImage rest = hog.grab().toImage();
  QEnterEvent enter({200.0, 30.0}, {200.0, 30.0}, {200.0, 30.0});
  QCoreApplication::sendEvent(&hog, &enter);
  const QImage hovered = hog.grab().toImage();
  EXPECT_NE(hovered.copy(rowArea), rest.copy(rowArea));
  EXPECT_EQ(hovered.copy(below), rest.copy(below));
  QHoverEvent ontoPanel(QEvent::HoverMove, {200.0, rowHeight + 20.0}, {200.0, rowHeight + 20.0},
                        {200.0, 30.0});
  QCoreApplication::sendEvent(&hog, &ontoPanel);
  EXPECT_EQ(hog.grab().toImage(), rest);
  QHoverEvent back(QEvent::HoverMove, {200.0, 30.0}, {200.0, 30.0}, {200.0, rowHeight + 20.0});
  QCoreApplication::sendEvent(&hog, &back);
  EXPECT_EQ(hog.grab().toImage(), hovered);
}

TEST_F(StartupAppRowWidgetTest, theButtonsOfAllRowsFormTwoColumns) {
  auto off = row("Off");
  off.isEnabled = false;
  openPage({row("On"), off});
  EXPECT_EQ(button(rowOf("On"), "Quit")->geometry(), button(rowOf("Off"), "Quit")->geometry());
  EXPECT_EQ(button(rowOf("On"), "Disable")->geometry(), button(rowOf("Off"), "Enable")->geometry());
}

// A faint row begins with the strongest ink, or its small texts would lack contrast.
TEST_F(StartupAppRowWidgetTest, theBadgeOfAFaintRowHasTheStrongestInk) {
  auto off = row("W");
  off.isEnabled = false;
  auto& shown = open(off);
  shown.setGraphicsEffect(nullptr);
  QImage image(shown.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  shown.render(&image, {}, {}, QWidget::RenderFlags());
  const double left = 70.0 + textWidth(QStringLiteral("W"), TextRole::rowTitle()) + 1.0 + 8.0;
  const int first = static_cast<int>(std::ceil(left)) + 2;
  const int last = first + static_cast<int>(badgeWidth(QStringLiteral("DISABLED"))) - 4;
  int darkest = 255;
  for (int x = first; x < last; ++x)
    for (int y = 17; y < 29; ++y) darkest = std::min(darkest, image.pixelColor(x, y).red());
  EXPECT_LT(darkest, 0x60);  // the usual ink of this badge is not darker than 0x65
}

}  // namespace
}  // namespace vorli::ui

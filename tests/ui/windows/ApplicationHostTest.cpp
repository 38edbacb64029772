#include "tests/fakes/ApplicationBundle.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/SpokenElement.h"
#include "ui/windows/AboutPanel.h"
#include "ui/windows/ApplicationHost.h"
#include "ui/windows/InfoAlert.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QMargins>
#include <QWindow>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

template <typename Window>
QList<Window*> open() {
  QList<Window*> windows;
  for (auto* widget : QApplication::topLevelWidgets()) {
    if (auto* window = dynamic_cast<Window*>(widget); window && window->isVisible())
      windows.push_back(window);
  }
  return windows;
}

QStringList textsOf(const QWidget* window) {
  QStringList texts;
  for (const auto* label : window->findChildren<QLabel*>()) texts.push_back(label->text());
  for (const auto* button : window->findChildren<QAbstractButton*>()) {
    texts.push_back("[" + (button->text().isEmpty() ? button->accessibleName() : button->text()) + "]");
  }
  return texts;
}

void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QKeyEvent event(QEvent::KeyPress, key, modifiers);
  QApplication::sendEvent(widget, &event);
  settleWindows();
}

struct ApplicationHostTest : testing::Test {
  fakes::ApplicationBundle bundle;
  FakeSurroundings surroundings;
  ApplicationHost host{bundle, surroundings};

  // Ends the loop below, and counts how often the program would have ended.
  int ends = 0;
  QMetaObject::Connection quitting =
      QObject::connect(qApp, &QCoreApplication::aboutToQuit, [this] { ++ends; });
  void TearDown() override {
    QObject::disconnect(quitting);
    settleWindows();
  }
};

TEST_F(ApplicationHostTest, theAboutPanelShowsNameAndVersion) {
  host.openAboutPanel();
  ASSERT_EQ(open<AboutPanel>().size(), 1);
  EXPECT_EQ(textsOf(open<AboutPanel>()[0]), (QStringList{"Vorli", "v1.2.3 (build 7)", "[Close]"}));
  EXPECT_EQ(surroundings.front, "About Vorli");
}

TEST_F(ApplicationHostTest, textsFitInThePanelAndInAnAlert) {
  host.openAboutPanel();
  expectTextsFit(*open<AboutPanel>()[0], QStringLiteral("About"));
  const QString sentence =
      QStringLiteral("The background helper could not be reached, and nothing was purged. ");
  host.showInfoAlert("A heading that takes more than one line in a narrow window",
                     sentence.repeated(3).trimmed().toStdString());
  settleWindows();
  expectTextsFit(*open<InfoAlert>()[0], QStringLiteral("alert"));
}

TEST_F(ApplicationHostTest, openWindowsTakeTheDesktopsColours) {
  host.openAboutPanel();
  host.showInfoAlert("Vorli", "Helper not installed.");
  const auto alert = [] { return open<InfoAlert>()[0]; };
  const auto panel = [] { return open<AboutPanel>()[0]; };
  settleWindows();
  const auto alertTexts = textsOf(alert()), panelTexts = textsOf(panel());
  const auto lightAlert = alert()->grab().toImage(), lightPanel = panel()->grab().toImage();
  surroundings.change(Appearance::dark);
  settleWindows();
  EXPECT_NE(alert()->grab().toImage(), lightAlert);
  EXPECT_NE(panel()->grab().toImage(), lightPanel);
  EXPECT_EQ(textsOf(alert()), alertTexts);
  EXPECT_EQ(textsOf(panel()), panelTexts);
  surroundings.change(Appearance::light);
  settleWindows();
  EXPECT_EQ(alert()->grab().toImage(), lightAlert);
  EXPECT_EQ(panel()->grab().toImage(), lightPanel);
}

TEST_F(ApplicationHostTest, thereIsOneAboutPanelAndItIsDestroyedWhenClosed) {
  host.openAboutPanel();
  host.openAboutPanel();
  ASSERT_EQ(open<AboutPanel>().size(), 1);
  const QPointer<AboutPanel> panel = open<AboutPanel>()[0];
  press(panel, Qt::Key_Escape);
  EXPECT_TRUE(panel.isNull());
  host.openAboutPanel();
  EXPECT_EQ(open<AboutPanel>().size(), 1);
}

TEST_F(ApplicationHostTest, theAboutPanelClosesByItsButtonAndByTheUsualKey) {
  host.openAboutPanel();
  open<AboutPanel>()[0]->findChild<QAbstractButton*>()->click();
  settleWindows();
  EXPECT_TRUE(open<AboutPanel>().isEmpty());
  host.openAboutPanel();
  press(open<AboutPanel>()[0], Qt::Key_W, Qt::ControlModifier);
  EXPECT_TRUE(open<AboutPanel>().isEmpty());
}

TEST_F(ApplicationHostTest, anAlertShowsItsTextsAndHasOneButton) {
  host.showInfoAlert("Vorli", "Helper not installed. Open Vorli to finish setup.");
  ASSERT_EQ(open<InfoAlert>().size(), 1);
  const auto* alert = open<InfoAlert>()[0];
  EXPECT_EQ(textsOf(alert),
            (QStringList{"Vorli", "Helper not installed. Open Vorli to finish setup.", "[OK]"}));
  EXPECT_EQ(alert->windowModality(), Qt::ApplicationModal);
  EXPECT_EQ(surroundings.front, "Vorli");
}

TEST_F(ApplicationHostTest, anAlertAndThePanelSayWhatTheyAre) {
  const QString text = "Helper not installed. Open Vorli to finish setup.";
  host.showInfoAlert("Vorli", text.toStdString());
  auto* alert = open<InfoAlert>().at(0);
  EXPECT_EQ(spokenElement(*alert), (SpokenElement{QAccessible::AlertMessage, "Vorli", "", text}));
  EXPECT_EQ(spokenElement(*alert->findChild<QAbstractButton*>()),
            (SpokenElement{QAccessible::Button, "OK", "", ""}));
  for (auto* label : alert->findChildren<QLabel*>())
    EXPECT_EQ(spokenElement(*label), (SpokenElement{QAccessible::StaticText, label->text(), "", ""}));
  host.openAboutPanel();
  auto* panel = open<AboutPanel>().at(0);
  EXPECT_EQ(spokenElement(*panel), (SpokenElement{QAccessible::Dialog, "About Vorli", "", ""}));
  EXPECT_EQ(spokenElement(*panel->findChild<QAbstractButton*>()),
            (SpokenElement{QAccessible::Button, "Close", "", ""}));
}

TEST_F(ApplicationHostTest, anAlertClosesByItsButtonReturnAndEscape) {
  for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
    host.showInfoAlert("Vorli", "text");
    press(open<InfoAlert>()[0]->findChild<QAbstractButton*>(), key);
    EXPECT_TRUE(open<InfoAlert>().isEmpty()) << key;
  }
}

TEST_F(ApplicationHostTest, theSameAlertIsNotStacked) {
  for (int i = 0; i < 3; ++i) host.showInfoAlert("Vorli", "text");
  EXPECT_EQ(open<InfoAlert>().size(), 1);
  host.showInfoAlert("Vorli", "another text");
  EXPECT_EQ(open<InfoAlert>().size(), 2);
}

TEST_F(ApplicationHostTest, aLongTextMakesTheAlertHigherAndStaysInside) {
  host.showInfoAlert("Vorli", "text");
  host.showInfoAlert("Vorli",
                     std::string(40, 'x') + " " + std::string(400, 'y') + std::string(20, ' ') + "end");
  const auto shown = open<InfoAlert>();
  ASSERT_EQ(shown.size(), 2);
  EXPECT_NE(shown[0]->height(), shown[1]->height());
  for (const auto* alert : shown) {
    for (const auto* label : alert->findChildren<QLabel*>()) {
      EXPECT_TRUE(alert->rect().contains(label->geometry()));
      EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    }
  }
}

TEST_F(ApplicationHostTest, withoutACompositorTheSheetIsTheWholeWindow) {
  host.openAboutPanel();
  EXPECT_EQ(surroundings.shadow, QMargins(40, 28, 40, 56));
  EXPECT_EQ(open<AboutPanel>()[0]->size(), QSize(380, 336));
  press(open<AboutPanel>()[0], Qt::Key_Escape);
  surroundings.composited = Compositing::absent;
  host.openAboutPanel();
  EXPECT_EQ(surroundings.shadow, QMargins());
  EXPECT_EQ(open<AboutPanel>()[0]->size(), QSize(300, 252));
}

TEST_F(ApplicationHostTest, cornersAreRoundWithACompositorAndSquareWithout) {
  const auto cornerAlpha = [this](QPoint corner) {
    host.openAboutPanel();
    auto* panel = open<AboutPanel>()[0];
    QImage image(panel->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    panel->render(&image, {}, {}, QWidget::DrawChildren);
    press(panel, Qt::Key_Escape);
    return qAlpha(image.pixel(corner));
  };
  EXPECT_LT(cornerAlpha({40, 28}), 60);
  surroundings.composited = Compositing::absent;
  EXPECT_EQ(cornerAlpha({0, 0}), 255);
}

TEST_F(ApplicationHostTest, everyWindowThatTakesKeysIsBroughtToTheFront) {
  host.openAboutPanel();
  surroundings.front.clear();
  host.activateIgnoringOtherApps();
  EXPECT_EQ(surroundings.front, "About Vorli");
}

TEST_F(ApplicationHostTest, aMinimisedWindowStaysSoUntilItIsAskedFor) {
  host.openAboutPanel();
  auto* panel = open<AboutPanel>()[0];
  panel->showMinimized();
  settleWindows();
  surroundings.front.clear();
  host.activateIgnoringOtherApps();
  EXPECT_NE(surroundings.front, "About Vorli");
  EXPECT_TRUE(panel->isMinimized());
  host.openAboutPanel();
  EXPECT_EQ(surroundings.front, "About Vorli");
  EXPECT_FALSE(panel->isMinimized());
}

TEST_F(ApplicationHostTest, aWindowOnAnotherWorkspaceStaysThereUntilItIsAskedFor) {
  host.openAboutPanel();
  surroundings.areHere = false;
  surroundings.front.clear();
  host.activateIgnoringOtherApps();
  EXPECT_NE(surroundings.front, "About Vorli");
  host.openAboutPanel();
  EXPECT_EQ(surroundings.front, "About Vorli");
}

TEST_F(ApplicationHostTest, terminationEndsTheProgramAtOnceWhenItMay) {
  int asked = 0;
  host.setTerminationHandler([&asked] {
    ++asked;
    return true;
  });
  QMetaObject::invokeMethod(
      qApp, [this] { host.terminate(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(ends, 1);
}

TEST_F(ApplicationHostTest, deferredTerminationWaitsForTheReplyAndAsksOnce) {
  int asked = 0;
  host.setTerminationHandler([&asked] {
    ++asked;
    return false;
  });
  host.terminate();
  host.terminate();
  EXPECT_EQ(asked, 1);
  QMetaObject::invokeMethod(
      qApp,
      [this] {
        EXPECT_EQ(ends, 0);
        host.replyToTermination();
      },
      Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_EQ(ends, 1);
}

TEST_F(ApplicationHostTest, aReplyThatComesBeforeTheAnswerCounts) {
  host.setTerminationHandler([this] {
    host.replyToTermination();
    return false;
  });
  QMetaObject::invokeMethod(
      qApp, [this] { host.terminate(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_EQ(ends, 1);
}

TEST_F(ApplicationHostTest, quittingTheProgramFromOutsideAsksToo) {
  int asked = 0;
  host.setTerminationHandler([&asked] {
    ++asked;
    return false;
  });
  const auto goOn = [this] {
    EXPECT_EQ(ends, 0);
    host.replyToTermination();
  };
  const auto endOfSession = [goOn] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    EXPECT_FALSE(quit.isAccepted());
    QApplication::quit();  // a second one while the first is deferred
    QMetaObject::invokeMethod(qApp, goOn, Qt::QueuedConnection);
  };
  QMetaObject::invokeMethod(qApp, endOfSession, Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(ends, 1);
}

TEST_F(ApplicationHostTest, anEndOfTheSessionThatNeedNotWaitEndsTheProgram) {
  int asked = 0;
  host.setTerminationHandler([&asked] {
    ++asked;
    return true;
  });
  const auto endOfSession = [] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
  };
  QMetaObject::invokeMethod(qApp, endOfSession, Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(ends, 1);
}

TEST_F(ApplicationHostTest, anUnexpectedReplyEndsNothing) {
  bool wentOn = false;
  QMetaObject::invokeMethod(
      qApp, [this] { host.replyToTermination(); }, Qt::QueuedConnection);
  const auto goOn = [&wentOn] {
    wentOn = true;
    QCoreApplication::exit();
  };
  QMetaObject::invokeMethod(
      qApp, [goOn] { QMetaObject::invokeMethod(qApp, goOn, Qt::QueuedConnection); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  EXPECT_TRUE(wentOn);
}

}  // namespace
}  // namespace vorli::ui

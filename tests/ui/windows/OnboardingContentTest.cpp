#include "flows/OnboardingWindowController.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/flows/OnboardingFixture.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/ShownWidgets.h"
#include "tests/ui/windows/SpokenElement.h"
#include "ui/windows/OnboardingContent.h"
#include "ui/windows/OnboardingPicture.h"
#include "ui/windows/OnboardingSheet.h"
#include "ui/windows/SheetWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QWindow>
#include <cstdlib>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

struct OnboardingContentTest : OnboardingFixture {
  ~OnboardingContentTest() override {
    window.close();
    settleWindows();
  }

  /// Opens the window with this raw status of the registration.
  OnboardingSheet& open(int rawStatus, Preview preview = Preview::off) {
    service.rawStatus = rawStatus;
    flow.begin(preview);
    controller.showIfNeeded();
    scheduler.runReady();
    settleWindows();
    return *sheet();
  }
  static OnboardingSheet* sheet() {
    for (auto* widget : QApplication::topLevelWidgets()) {
      auto* found = dynamic_cast<OnboardingSheet*>(widget);
      if (found && found->isVisible()) return found;
    }
    return nullptr;
  }
  static QList<GlassPillButton*> buttons(const QWidget& sheet) {
    return shownWidgets<GlassPillButton>(sheet);
  }
  static QStringList spoken(const QWidget& sheet) {
    QStringList texts;
    for (const auto* label : sheet.findChildren<QLabel*>())
      if (!label->isHidden()) texts.push_back(label->text());
    return texts;
  }
  static QImage picture(QWidget& widget, double ratio = 1.0) {
    QImage image((QSizeF(widget.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    widget.render(&image);
    return image;
  }
  static void press(QWidget& widget, Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
  }

  FakeSurroundings surroundings;
  fakes::MotionPreference motion;
  fakes::ApplicationHost host;
  SheetWindow window;
  OnboardingContent content{window, surroundings, scheduler, motion};
  OnboardingWindowController controller{{needs(HostSystem::linuxDesktop), window, host, content}};
};

TEST_F(OnboardingContentTest, textsFitInEachState) {
  auto& sheet = open(0);
  for (const int rawStatus : {0, 1, 2, 3}) {
    service.changeStatus(rawStatus);
    scheduler.runReady();
    scheduler.advance(1.0);
    expectTextsFit(sheet, QString::number(rawStatus),
                   {QStringLiteral("Waiting…"), QStringLiteral("Waiting for approval…"),
                    QStringLiteral("Status: Waiting for approval…")});
  }
}

TEST_F(OnboardingContentTest, eachStateHasItsButtonsAndWords) {
  auto& sheet = open(0);
  ASSERT_EQ(buttons(sheet).size(), 1);
  EXPECT_EQ(buttons(sheet)[0]->text(), "Install Helper");
  EXPECT_TRUE(spoken(sheet).contains("Status: Helper not installed yet."));

  service.changeStatus(2);
  scheduler.runReady();
  ASSERT_EQ(buttons(sheet).size(), 2);
  EXPECT_EQ(buttons(sheet)[0]->text(), "Waiting…");
  EXPECT_FALSE(buttons(sheet)[0]->isEnabled());
  EXPECT_EQ(buttons(sheet)[0]->accessibleName(), "Waiting for helper approval");
  EXPECT_EQ(buttons(sheet)[0]->accessibleDescription(), "Enter your password to continue");
  EXPECT_EQ(buttons(sheet)[1]->text(), "Ask again");
  EXPECT_EQ(buttons(sheet)[1]->accessibleDescription(), "Opens the password window again if you closed it");
  EXPECT_TRUE(spoken(sheet).contains("Status: Waiting for approval…"));

  service.changeStatus(3);
  scheduler.runReady();
  ASSERT_EQ(buttons(sheet).size(), 2);
  EXPECT_EQ(buttons(sheet)[0]->text(), "Try again");
  EXPECT_EQ(buttons(sheet)[1]->text(), "Show how");
  for (const auto& text : spoken(sheet)) EXPECT_FALSE(text.startsWith("Status")) << text.toStdString();
}

TEST_F(OnboardingContentTest, theButtonsAreOnOneLineInEveryState) {
  auto& sheet = open(0);
  const auto placeOf = [&sheet](const GlassPillButton* button) {
    const int ring = GlassPillButton::ringMargin;
    const auto place = button->geometry().adjusted(ring, ring, -ring, -ring);
    return place.translated(-40, -28);  // the shadow around the sheet
  };
  EXPECT_EQ(placeOf(buttons(sheet)[0]), QRect(32, 524, 396, 44));
  service.changeStatus(2);
  scheduler.runReady();
  EXPECT_EQ(placeOf(buttons(sheet)[0]), QRect(32, 524, 128, 44));
  EXPECT_EQ(placeOf(buttons(sheet)[1]), QRect(170, 524, 258, 44));
}

TEST_F(OnboardingContentTest, everyStepCanBeTakenByKeyboard) {
  auto& sheet = open(0);
  service.statusAfterRegister = 1;
  press(*sheet.focusWidget(), Qt::Key_Return);
  scheduler.advance(1.0);
  EXPECT_EQ(sheet.picture().title(), "All set up");
  press(*sheet.focusWidget(), Qt::Key_Return);
  scheduler.runReady();
  EXPECT_EQ(sheet.picture().title(), "You're all set");
  press(*sheet.focusWidget(), Qt::Key_Return);
  scheduler.runReady();
  settleWindows();
  EXPECT_EQ(this->sheet(), nullptr);
  EXPECT_TRUE(flow.isSetupComplete());
}

TEST_F(OnboardingContentTest, returnDoesNothingWhileTheButtonIsInactiveAndPressesItAgainAfterwards) {
  auto& sheet = open(0);
  auto* install = buttons(sheet)[0];
  press(*sheet.focusWidget(), Qt::Key_Return);
  scheduler.runReady();
  ASSERT_FALSE(install->isEnabled());
  press(*sheet.focusWidget(), Qt::Key_Return);
  settleWindows();
  ASSERT_TRUE(controller.isOpen());
  scheduler.advance(0.5);
  ASSERT_TRUE(install->isEnabled());
  EXPECT_EQ(sheet.focusWidget(), install);
}

TEST_F(OnboardingContentTest, aSecondButtonThatBecomesInactivePassesTheFocusToTheFirst) {
  auto& sheet = open(3);
  buttons(sheet)[0]->setFocus(Qt::TabFocusReason);
  service.changeStatus(2);
  scheduler.runReady();
  ASSERT_FALSE(buttons(sheet)[0]->isEnabled());
  EXPECT_EQ(sheet.focusWidget(), buttons(sheet)[1]);
}

TEST_F(OnboardingContentTest, anOpenWindowTakesTheDesktopsColoursWhereItIs) {
  motion.setReduced(true);
  auto& sheet = open(2);
  scheduler.advance(1.0);
  const QImage light = picture(sheet);
  surroundings.change(Appearance::dark);
  settleWindows();
  ASSERT_EQ(this->sheet(), &sheet);
  EXPECT_NE(picture(sheet), light);
  EXPECT_EQ(surroundings.fronts, 1);
  ASSERT_EQ(buttons(sheet).size(), 2);
  EXPECT_EQ(buttons(sheet)[0]->text(), "Waiting…");
  EXPECT_FALSE(buttons(sheet)[0]->isEnabled());
  EXPECT_EQ(sheet.focusWidget(), buttons(sheet)[1]);
  surroundings.change(Appearance::light);
  settleWindows();
  EXPECT_EQ(picture(sheet), light);
}

TEST_F(OnboardingContentTest, escapeDoesNotEndTheFirstSteps) {
  auto& sheet = open(0);
  press(sheet, Qt::Key_Escape);
  settleWindows();
  EXPECT_NE(this->sheet(), nullptr);
  EXPECT_TRUE(controller.isOpen());
}

TEST_F(OnboardingContentTest, aClosedWindowIsDestroyedAndOpensAgain) {
  open(0).close();
  settleWindows();
  EXPECT_EQ(sheet(), nullptr);
  EXPECT_FALSE(controller.isOpen());
  open(0);
  EXPECT_NE(sheet(), nullptr);
  EXPECT_EQ(surroundings.fronts, 2);
}

TEST_F(OnboardingContentTest, theLightBreathesAndNothingIsDrawnOnceItIsClosed) {
  auto& sheet = open(0);
  const QImage first = picture(sheet);
  scheduler.advance(4.2);
  EXPECT_NE(picture(sheet), first);
  sheet.close();
  settleWindows();
  scheduler.advance(1.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(OnboardingContentTest, theLightMovesFromTheFirstMomentOnAndRestsWhileTheWindowIsHidden) {
  struct Paints : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::Paint;
      return false;
    }
    int count = 0;
  } paints;
  auto& sheet = open(0);
  scheduler.advance(2.0);
  sheet.installEventFilter(&paints);
  const auto paintsInASecond = [&] {
    paints.count = 0;
    for (int tenth = 0; tenth < 10; ++tenth) {
      scheduler.advance(0.1);
      settleWindows();
    }
    return paints.count;
  };
  EXPECT_GE(paintsInASecond(), 5);
  sheet.hide();
  settleWindows();
  EXPECT_EQ(paintsInASecond(), 0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  sheet.QWidget::show();
  settleWindows();
  EXPECT_GE(paintsInASecond(), 5);
}

TEST_F(OnboardingContentTest, withLessMotionTheWindowRests) {
  motion.setReduced(true);
  auto& sheet = open(2);
  scheduler.advance(1.0);
  const QImage first = picture(sheet);
  scheduler.advance(3.0);
  EXPECT_EQ(picture(sheet), first);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(OnboardingContentTest, theWindowAndItsButtonsSayWhatTheyAreInEveryState) {
  auto& sheet = open(0);
  EXPECT_EQ(spokenElement(sheet), (SpokenElement{QAccessible::Dialog, "Vorli", "", ""}));
  const auto expectButtons = [&sheet](const std::vector<SpokenElement>& expected) {
    std::vector<SpokenElement> found;
    for (auto* button : buttons(sheet)) found.push_back(spokenElement(*button));
    EXPECT_EQ(found, expected);
  };
  const auto change = [this](int rawStatus) {
    service.changeStatus(rawStatus);
    scheduler.runReady();
  };
  expectButtons({{QAccessible::Button, "Install Helper", "", ""}});
  change(2);
  expectButtons({{QAccessible::Button, "Waiting for helper approval", "", "Enter your password to continue"},
                 {QAccessible::Button, "Ask again", "", "Opens the password window again if you closed it"}});
  change(3);
  expectButtons({{QAccessible::Button, "Try again", "", ""}, {QAccessible::Button, "Show how", "", ""}});
  change(1);
  expectButtons({{QAccessible::Button, "Continue", "", ""}});
  buttons(sheet)[0]->click();
  scheduler.runReady();
  expectButtons({{QAccessible::Button, "Start using Vorli", "", ""}});
}

TEST_F(OnboardingContentTest, whatIsPaintedIsSaidInEveryState) {
  auto& sheet = open(0);
  const auto expectTexts = [&sheet](const std::vector<QString>& expected) {
    std::vector<SpokenElement> found, wanted;
    for (auto* label : shownWidgets<QLabel>(sheet)) found.push_back(spokenElement(*label));
    for (const auto& text : expected) wanted.push_back({QAccessible::StaticText, text, "", ""});
    EXPECT_EQ(found, wanted);
  };
  const auto change = [this](int rawStatus) {
    service.changeStatus(rawStatus);
    scheduler.runReady();
  };
  expectTexts(
      {"Welcome to Vorli. Vorli polishes your computer when things slow down, frees memory and "
       "flushes caches in seconds to make it feel new again.",
       "Status: Helper not installed yet.",
       "One small permission. Your system will ask for your password to set up a small background "
       "helper. It only runs when Vorli asks, and goes when you remove Vorli."});
  change(2);
  expectTexts(
      {"Waiting for approval. Your system is asking for your password. Enter it to let Vorli's "
       "helper work.",
       "Status: Waiting for approval…",
       "In the password window. Enter your password, or an administrator's. Nothing else is changed.",
       "Then come back here. This window catches up automatically. You don't need to do anything "
       "else in Vorli."});
  change(3);
  expectTexts({"Almost there. The helper that belongs to Vorli is missing.",
               "Helper missing. Vorli's helper isn't where it was installed. This usually means that an "
               "installation was interrupted, or files were moved."});
  change(1);
  expectTexts({"All set up. Helper is approved.", "Status: Helper is set up and ready.",
               "Background helper installed. Vorli can now free memory and flush caches when you press "
               "Polish."});
  buttons(sheet)[0]->click();
  scheduler.runReady();
  expectTexts(
      {"You're all set. When your computer feels tight, click the Vorli icon in the panel and press "
       "Polish."});
}

TEST_F(OnboardingContentTest, aCardNeverReachesTheWordsAboveIt) {
  auto& sheet = open(0);
  for (const int raw : {0, 1, 2, 3}) {
    service.changeStatus(raw);
    scheduler.runReady();
    const auto& shown = sheet.picture();
    EXPECT_EQ(shown.card().bottom(), 472.0) << raw;
    EXPECT_GE(shown.card().top(), shown.sentencePlace().bottom()) << raw;
    EXPECT_GE(shown.mark().top(), 32.0) << raw;
  }
}

struct PaintedPicture final : QWidget {
  explicit PaintedPicture(OnboardingPicture::Content content) : picture(std::move(content)) {
    resize(OnboardingMetrics::width, OnboardingMetrics::height);
  }
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const auto& palette = WindowPalette::of(Appearance::light);
    picture.paintWords(painter, 0.0, palette);
    picture.paintCard(painter, palette);
  }

  const OnboardingPicture picture;
};

TEST(OnboardingPictureTest, wordsOfATranslationWrapAndTheirCardGrows) {
  const QString longTitle = QStringLiteral("In dem Fenster, das nach dem Kennwort des Benutzers fragt");
  const QString body = QStringLiteral(
      "Geben Sie Ihr Kennwort oder das eines Verwalters ein. Sonst wird nichts verändert, und Sie "
      "müssen es kein zweites Mal tun.");
  OnboardingPicture::Content content{.title = QStringLiteral("Es wird noch auf Ihre Zustimmung gewartet"),
                                     .sentence = body,
                                     .rows = {{"gearshape", ExplainerRow::Look::lit, longTitle, body}},
                                     .statusLine = (longTitle + u' ' + longTitle).left(80),
                                     .room = 316.0};
  PaintedPicture window(content);
  const double high = window.picture.row(0).height();
  expectTextsFit(window, QStringLiteral("translation"));
  EXPECT_EQ(window.picture.card().bottom(), 472.0);
  EXPECT_GE(window.picture.card().top(), window.picture.sentencePlace().bottom());
  content.rows[0].title = QStringLiteral("Kurz");
  EXPECT_EQ(OnboardingPicture(content).row(0).height(), high - 18.0);
}

TEST(OnboardingMoodTest, theWaitingDialTurns) {
  const auto& palette = WindowPalette::of(Appearance::light);
  const auto at = [&](int position) { return moodTicks(OnboardingView::Mood::waiting, position, palette); };
  EXPECT_EQ(at(0)[2].opacity, 1.0);
  EXPECT_EQ(at(1)[3].opacity, 1.0);
  EXPECT_EQ(at(1)[2].opacity, 0.8);
  EXPECT_EQ(at(1)[11].opacity, 0.24);
  EXPECT_EQ(at(12)[2].opacity, 1.0);
}

TEST(OnboardingMoodTest, troubleShowsFourTicksInAmber) {
  const auto& palette = WindowPalette::of(Appearance::dark);
  const auto ticks = moodTicks(OnboardingView::Mood::trouble, 5, palette);
  EXPECT_EQ(ticks[3].colour, palette.amber);
  EXPECT_EQ(ticks[4].colour, palette.amberInk);
  EXPECT_EQ(ticks[4].opacity, 0.22);
}

// Writes pictures for people to look at into the folder VORLI_PICTURES, if that is set.
TEST_F(OnboardingContentTest, everyStateCanBeDrawn) {
  const char* folder = std::getenv("VORLI_PICTURES");
  for (const auto look : {Appearance::light, Appearance::dark}) {
    surroundings.look = look;
    open(0, Preview::on);
    PreviewPickerBar bar(flow);
    for (const auto& choice : PreviewPickerBar::choices()) {
      bar.pick(choice);
      scheduler.advance(2.0);
      for (const double ratio : {1.0, 2.0}) {
        const QImage image = picture(*sheet(), ratio);
        EXPECT_GT(qAlpha(image.pixel(image.width() / 2, image.height() / 2)), 250);
        if (!folder) continue;
        image.save(QStringLiteral("%1/onboarding-%2-%3-%4x.png")
                       .arg(QString::fromUtf8(folder), QString::fromStdString(std::string(choice.title)),
                            look == Appearance::dark ? "dark" : "light")
                       .arg(ratio));
      }
    }
    window.close();
    settleWindows();
  }
}

}  // namespace
}  // namespace vorli::ui

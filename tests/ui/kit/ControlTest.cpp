#include "tests/ui/ActiveWindow.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "ui/kit/BulkBanner.h"
#include "ui/kit/CalloutPanel.h"
#include "ui/kit/CheckBox.h"
#include "ui/kit/ChoiceRow.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/GlassToggle.h"
#include "ui/kit/LinkRow.h"
#include "ui/kit/PillChoice.h"
#include "ui/kit/SearchField.h"
#include "ui/kit/SettingsCard.h"
#include "ui/kit/Sidebar.h"
#include "ui/kit/ThinScrollBar.h"
#include "ui/kit/Toast.h"

#include <QAccessible>
#include <QApplication>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

constexpr auto lightLook = Appearance::light;

void pressAndRelease(QWidget& widget, Qt::Key key) {
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier), up(QEvent::KeyRelease, key, Qt::NoModifier);
  QApplication::sendEvent(&widget, &down);
  QApplication::sendEvent(&widget, &up);
}

QAccessibleInterface& spoken(QWidget& widget) {
  return *QAccessible::queryAccessibleInterface(&widget);
}

RowFace face(const char* title, const char* text) {
  return {"bell", QString::fromUtf8(title), QString::fromUtf8(text), Tone::plain};
}

QImage grabbed(QWidget& widget) {
  return widget.grab().toImage();
}

TEST(Control, toggleTurnsWithSpaceReturnAndTheAssistiveAction) {
  GlassToggle toggle(face("Gentle nudges", "A quiet hint."), lightLook, nullptr);
  pressAndRelease(toggle, Qt::Key_Space);
  EXPECT_TRUE(toggle.isChecked());
  pressAndRelease(toggle, Qt::Key_Return);
  EXPECT_FALSE(toggle.isChecked());
  spoken(toggle).actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_TRUE(toggle.isChecked());
}

TEST(Control, onlyASwitchIsToggledByAssistiveToolsAndEverythingElsePressed) {
  GlassToggle toggle(face("Gentle nudges", "A quiet hint."), lightLook, nullptr);
  EXPECT_EQ(spoken(toggle).actionInterface()->actionNames(),
            QStringList{QAccessibleActionInterface::toggleAction()});
  PillChoice choice({"Auto", "Light"}, QStringLiteral("Dial"), lightLook, nullptr);
  auto& light = *choice.findChildren<QAbstractButton*>()[1];
  EXPECT_EQ(spoken(light).actionInterface()->actionNames(),
            QStringList{QAccessibleActionInterface::pressAction()});
  spoken(light).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(choice.chosen(), 1);
}

TEST(Control, toggleExposesItsNameHintRoleAndState) {
  GlassToggle toggle(face("Gentle nudges", "A quiet hint."), lightLook, nullptr);
  auto& said = spoken(toggle);
  EXPECT_EQ(said.text(QAccessible::Name), "Gentle nudges");
  EXPECT_EQ(said.text(QAccessible::Description), "A quiet hint.");
  EXPECT_EQ(said.role(), QAccessible::CheckBox);
  EXPECT_FALSE(said.state().checked);
  toggle.setChecked(true);
  EXPECT_TRUE(said.state().checked);
}

TEST(Control, toggleShowsEachState) {
  GlassToggle toggle(face("Gentle nudges", "A quiet hint."), lightLook, nullptr);
  toggle.resize(600, 56);
  const QImage off = grabbed(toggle);
  toggle.setChecked(true);
  const QImage on = grabbed(toggle);
  toggle.setDown(true);
  const QImage pressed = grabbed(toggle);
  toggle.setDown(false);
  toggle.setEnabled(false);
  EXPECT_NE(off, on);
  EXPECT_NE(on, pressed);
  EXPECT_NE(on, grabbed(toggle));
}

TEST(Control, disabledControlIgnoresKeys) {
  CheckBox box(QStringLiteral("Don't ask again"), lightLook, nullptr);
  box.setEnabled(false);
  pressAndRelease(box, Qt::Key_Space);
  EXPECT_FALSE(box.isChecked());
}

TEST(Control, ringShowsOnlyWhereTheKeyboardWent) {
  QWidget window;
  GlassPillButton button(QStringLiteral("Undo"), GlassPillButton::Role::plain, lightLook, &window);
  button.resize(button.sizeHint());
  window.show();
  makeActive(window);
  const QImage rest = grabbed(button);
  button.setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(grabbed(button), rest);
  button.clearFocus();
  button.setFocus(Qt::TabFocusReason);
  EXPECT_NE(grabbed(button), rest);
}

TEST(Control, linkRowIsALinkAndAnActionRowIsAButton) {
  LinkRow link(LinkRow::Kind::externalLink, face("Give feedback", "Quirks"), lightLook, nullptr);
  LinkRow action(LinkRow::Kind::action, face("Diagnostics log", "For support"), lightLook, nullptr);
  EXPECT_EQ(spoken(link).role(), QAccessible::Link);
  EXPECT_EQ(spoken(action).role(), QAccessible::Button);
}

TEST(Control, rowGrowsWithItsText) {
  const QString longText = QString(QStringLiteral("word ")).repeated(60);
  GlassToggle plain(face("Title", "One line."), lightLook, nullptr);
  GlassToggle high({"bell", QStringLiteral("Title"), longText, Tone::plain}, lightLook, nullptr);
  EXPECT_EQ(plain.heightForWidth(600), 56);
  EXPECT_GT(high.heightForWidth(600), 90);
}

// Texts as long as a translation may be.
TEST(Control, textsFitWhenTheyAreTwiceAsLong) {
  const QString title =
      QStringLiteral("Quit hidden applications on Polish, those in the background included");
  const QString text =
      QStringLiteral("Asks applications without a window to close before the memory is purged. ")
          .repeated(2)
          .trimmed();
  const RowFace longFace{"bell", title, text, Tone::plain};
  GlassToggle toggle(longFace, lightLook, nullptr);
  LinkRow link(LinkRow::Kind::externalLink, longFace, lightLook, nullptr);
  ChoiceRow choice(longFace, {"Selbstständig", "Hell", "Dunkel"}, lightLook, nullptr);
  BulkBanner banner(BulkBanner::Kind::destructive, longFace, QStringLiteral("Alle auf einmal entfernen"),
                    lightLook, nullptr, [] {});
  for (QWidget* row : {static_cast<QWidget*>(&toggle), static_cast<QWidget*>(&link),
                       static_cast<QWidget*>(&choice), static_cast<QWidget*>(&banner)}) {
    row->resize(600, row->heightForWidth(600));
    row->grab();  // delivers the new size
    expectTextsFit(*row, QString::fromUtf8(row->metaObject()->className()));
  }
  CalloutPanel panel(
      CalloutPanel::Kind::callout, {title + u' ' + title, text, title.left(30), title.left(24)}, lightLook,
      nullptr, [] {}, [] {});
  panel.resize(514, panel.heightForWidth(514));
  panel.grab();
  expectTextsFit(panel, QStringLiteral("callout"));
  Toast toast({"checkmark.circle.fill", Tone::lit, title, title, title.left(16)},
              GlassPillButton::Role::plain, lightLook, nullptr, [] {});
  toast.grab();
  expectTextsFit(toast, QStringLiteral("toast"));
}

// The greatest widths that fit into the windows.
TEST(Control, textsFitInPlacesThatDoNotGrowSideways) {
  Sidebar sidebar({{"gearshape", "Allgemeine Einstellungen", "tab", "hint"},
                   {"bell", "Unaufdringliche Hinweise", "tab", "hint"}},
                  lightLook, nullptr, [](int) {});
  sidebar.resize(Sidebar::sidebarWidth, 620);
  sidebar.grab();
  expectTextsFit(sidebar, QStringLiteral("sidebar"));
  GlassPillButton button(QStringLiteral("Noch einmal fragen"), GlassPillButton::Role::plain, lightLook,
                         nullptr, GlassPillButton::Size::large);
  button.resize(128 + 2 * GlassPillButton::ringMargin, button.sizeHint().height());
  expectTextsFit(button, QStringLiteral("button"));
  CheckBox box(
      QStringLiteral("Bei dieser Art von Absturz bitte nie wieder nachfragen, auch nicht nach einem Update"),
      lightLook, nullptr);
  EXPECT_GT(box.sizeHint().width(), 396);
  EXPECT_GT(box.heightForWidth(396), box.sizeHint().height());
  box.resize(396, box.heightForWidth(396));
  expectTextsFit(box, QStringLiteral("check box"));
  SettingsCard card(
      QStringLiteral("Hinweise, die auf dem Bildschirm erscheinen, solange der Rechner voll ist"), lightLook,
      nullptr);
  card.addRow(new GlassToggle(face("Title", "One line."), lightLook, nullptr));
  card.resize(300, card.heightForWidth(300));
  card.grab();
  expectTextsFit(card, QStringLiteral("card"));
}

TEST(Control, mayBeDestroyedByTheEventThatItHandles) {
  QPointer<GlassPillButton> button =
      new GlassPillButton(QStringLiteral("Undo"), GlassPillButton::Role::plain, lightLook, nullptr);
  button->deleteLater();
  QCoreApplication::sendPostedEvents(button, QEvent::DeferredDelete);
  EXPECT_TRUE(button.isNull());
}

TEST(ThinScrollBar, theThumbReachesBothEndsAndAPressThereTurnsAPage) {
  ThinScrollBar bar(Qt::Vertical, lightLook, nullptr);
  bar.resize(12, 200);
  bar.setRange(0, 1000);
  bar.setPageStep(250);
  bar.setSingleStep(20);
  const auto isThumb = [&bar](int y) {
    QImage image(bar.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    bar.render(&image, {}, {}, QWidget::RenderFlags());
    return qAlpha(image.pixel(6, y)) > 0;
  };
  EXPECT_TRUE(isThumb(1));
  EXPECT_FALSE(isThumb(198));
  QMouseEvent press(QEvent::MouseButtonPress, QPointF(6, 198), QPointF(6, 198), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&bar, &press);
  QMouseEvent release(QEvent::MouseButtonRelease, QPointF(6, 198), QPointF(6, 198), Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(&bar, &release);
  EXPECT_EQ(bar.value(), 250);
  bar.setValue(1000);
  EXPECT_FALSE(isThumb(1));
  EXPECT_TRUE(isThumb(198));
}

TEST(SettingsCard, stacksItsRowsAndLeavesOutHiddenOnes) {
  SettingsCard card(QStringLiteral("Polish"), lightLook, nullptr);
  auto* first = new GlassToggle(face("One", "text"), lightLook, nullptr);
  auto* second = new GlassToggle(face("Two", "text"), lightLook, nullptr);
  card.addRow(first);
  card.addRow(second);
  EXPECT_EQ(card.heightForWidth(600), 28 + 112);
  card.resize(600, card.heightForWidth(600));
  card.arrange();
  EXPECT_EQ(first->geometry(), QRect(0, 28, 600, 56));
  EXPECT_EQ(second->geometry(), QRect(0, 84, 600, 56));
  first->hide();
  card.arrange();
  EXPECT_EQ(card.heightForWidth(600), 28 + 56);
  EXPECT_EQ(second->y(), 28);
}

TEST(PillChoice, reportsOnlyTheUsersChoice) {
  PillChoice choice({"Auto", "Light", "Dark"}, QStringLiteral("Dial"), lightLook, nullptr);
  int told = -1;
  choice.setHandler([&told](int index) { told = index; });
  choice.choose(1);
  EXPECT_EQ(choice.chosen(), 1);
  EXPECT_EQ(told, -1);
  choice.findChildren<QAbstractButton*>()[2]->click();
  EXPECT_EQ(told, 2);
  EXPECT_EQ(choice.chosen(), 2);
}

TEST(CalloutPanel, confirmationFocusesItsHarmlessAnswerAndEscapeGivesIt) {
  QWidget window;
  int accepted = 0, refused = 0;
  const CalloutPanel::Words words{"Disable Docker?", "You can turn it back on.", "Disable", "Cancel"};
  CalloutPanel panel(
      CalloutPanel::Kind::destructiveConfirmation, words, lightLook, &window, [&] { ++accepted; },
      [&] { ++refused; });
  panel.resize(500, panel.heightForWidth(500));
  window.show();
  makeActive(window);
  EXPECT_TRUE(panel.refuseButton().hasFocus());
  pressAndRelease(panel.refuseButton(), Qt::Key_Escape);
  EXPECT_EQ(refused, 1);
  panel.acceptButton().click();
  EXPECT_EQ(accepted, 1);
}

TEST(CalloutPanel, ignoresPressesOnceItHasBeenAnswered) {
  int answers = 0;
  const auto count = [&] { ++answers; };
  CalloutPanel panel(CalloutPanel::Kind::confirmation, {"Disable Docker?", "You can.", "Disable", "Cancel"},
                     lightLook, nullptr, count, count);
  panel.stopAnswering();
  panel.acceptButton().click();
  panel.refuseButton().click();
  pressAndRelease(panel, Qt::Key_Escape);
  EXPECT_EQ(answers, 0);
}

TEST(CalloutPanel, textsAndButtonsStayInside) {
  const CalloutPanel::Words words{"A heading", QString(QStringLiteral("body ")).repeated(50), "Pause it",
                                  "Keep"};
  CalloutPanel panel(
      CalloutPanel::Kind::callout, words, lightLook, nullptr, [] {}, [] {});
  panel.resize(514, panel.heightForWidth(514));
  grabbed(panel);
  EXPECT_TRUE(panel.rect().contains(panel.acceptButton().geometry()));
  EXPECT_TRUE(panel.rect().contains(panel.refuseButton().geometry()));
  EXPECT_FALSE(
      panel.acceptButton().geometry().intersects(panel.refuseButton().geometry().adjusted(4, 0, 0, 0)));
}

TEST(Toast, wrapsALongNameWithinItsGreatestWidth) {
  const Toast::Words words{"checkmark.circle.fill", Tone::lit, "Removed",
                           QString(QStringLiteral("Very ")).repeated(30), "Undo"};
  Toast toast(words, GlassPillButton::Role::plain, lightLook, nullptr, [] {});
  const QSize plate = toast.sizeHint().shrunkBy(Toast::shadowMargins);
  EXPECT_LE(plate.width(), 568);
  EXPECT_GT(plate.height(), 48);
  EXPECT_EQ(toast.accessibleName().left(12), "Removed Very");
}

TEST(Toast, shortToastHasItsMinimumHeight) {
  const Toast::Words words{"checkmark.circle.fill", Tone::lit, "Removed", "ARK Audio", "Undo"};
  const Toast toast(words, GlassPillButton::Role::plain, lightLook, nullptr, [] {});
  EXPECT_EQ(toast.sizeHint().shrunkBy(Toast::shadowMargins).height(), 48);
}

TEST(Sidebar, reportsThePressedTabAndExposesEachAsATab) {
  int chosen = -1;
  Sidebar sidebar({{"gearshape", "General", "General tab", "Switches to the General settings"},
                   {"bell", "Notifications", "Notifications tab", "hint"}},
                  lightLook, nullptr, [&chosen](int index) { chosen = index; });
  const auto tabs = sidebar.findChildren<QAbstractButton*>();
  ASSERT_EQ(tabs.size(), 2);
  tabs[1]->click();
  EXPECT_EQ(chosen, 1);
  EXPECT_EQ(spoken(*tabs[0]).role(), QAccessible::PageTab);
  EXPECT_EQ(spoken(*tabs[0]).text(QAccessible::Name), "General tab");
  sidebar.select(0);
  EXPECT_TRUE(spoken(*tabs[0]).state().selected);
}

TEST(SearchField, leavesRoomForItsCount) {
  SearchField field(QStringLiteral("Find an app…"), QStringLiteral("Filters."), lightLook, nullptr);
  field.resize(608, 44);
  field.grab();  // delivers the new size
  const int alone = field.edit().width();
  field.setCount(QStringLiteral("10 apps, 2 leftover"));
  EXPECT_LT(field.edit().width(), alone - 80);
  EXPECT_EQ(spoken(field.edit()).text(QAccessible::Name), QStringLiteral("Find an app…"));
  EXPECT_EQ(field.focusProxy(), nullptr);  // otherwise, assistive tools would find the focus twice
  EXPECT_EQ(spoken(field.edit()).text(QAccessible::Description), QStringLiteral("Filters."));
}

TEST(BulkBanner, isAsHighAsItsTextNeeds) {
  int presses = 0;
  BulkBanner banner(BulkBanner::Kind::destructive, face("2 leftover apps", "Safe to clean up."),
                    QStringLiteral("Remove all"), lightLook, nullptr, [&presses] { ++presses; });
  EXPECT_EQ(banner.heightForWidth(600), 60);
  banner.button().click();
  EXPECT_EQ(presses, 1);
}

}  // namespace
}  // namespace vorli::ui

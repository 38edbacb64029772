#include <gtest/gtest.h>
// The fixture needs the test library before it.
#include "tests/fakes/Publish.h"
#include "tests/flows/SettingsFixture.h"
#include "tests/ui/windows/DrawnTexts.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/ShownWidgets.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/GlassToggle.h"
#include "ui/kit/LinkRow.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WindowButton.h"
#include "ui/windows/HelperStatusRow.h"
#include "ui/windows/HotkeyRecorder.h"
#include "ui/windows/SettingsWindow.h"
#include "ui/windows/SettingsWindowController.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <cstdlib>
#include <memory>

namespace vorli::ui {
namespace {

struct SettingsWindowTest : SettingsFixture {
  FakeSurroundings surroundings;
  SettingsWindowController windows{surroundings};

  void TearDown() override {
    windows.close();
    settleWindows();
  }

  SettingsWindow& open(VorliSettingsTab tab = VorliSettingsTab::general) {
    if (!view) make();
    view->select(tab);
    windows.show(*view);
    settleWindows();
    return *shown();
  }

  static SettingsWindow* shown() {
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (auto* window = dynamic_cast<SettingsWindow*>(widget); window && window->isVisible()) return window;
    }
    return nullptr;
  }

  template <typename Widget>
  static Widget* find(const QString& name) {
    for (auto* widget : shown()->template findChildren<QWidget*>()) {
      auto* found = dynamic_cast<Widget*>(widget);
      auto* spoken = QAccessible::queryAccessibleInterface(widget);
      if (found && spoken && spoken->text(QAccessible::Name) == name) return found;
    }
    return nullptr;
  }

  static void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(widget, &event);
    settleWindows();
  }
};

TEST_F(SettingsWindowTest, hasItsTitleAndOneSize) {
  auto& window = open();
  EXPECT_EQ(window.windowTitle(), "Vorli Settings");
  EXPECT_EQ(window.size(), QSize(880 + 80, 620 + 84));
  EXPECT_EQ(window.minimumSize(), window.maximumSize());
  EXPECT_FALSE(window.windowIcon().isNull());
}

TEST_F(SettingsWindowTest, isTheSheetAloneWithoutACompositor) {
  surroundings.composited = Compositing::absent;
  EXPECT_EQ(open().size(), QSize(880, 620));
}

TEST_F(SettingsWindowTest, hasItsButtonsOnTheSideOfTheDesktops) {
  open();
  EXPECT_EQ(find<WindowButton>("Close")->pos(), QPoint(40 + 880 - 12 - 28, 28 + 12));
  EXPECT_EQ(find<WindowButton>("Minimise")->pos(), QPoint(40 + 880 - 12 - 28 - 4 - 28, 28 + 12));
  windows.close();
  surroundings.side = CloseButtonSide::left;
  open();
  EXPECT_EQ(find<WindowButton>("Close")->pos(), QPoint(40 + 12, 28 + 12));
  EXPECT_EQ(find<WindowButton>("Minimise")->pos(), QPoint(40 + 12 + 28 + 4, 28 + 12));
}

TEST_F(SettingsWindowTest, secondShowBringsTheSameWindowToTheFront) {
  auto* first = &open();
  windows.show(*view);
  EXPECT_EQ(shown(), first);
  EXPECT_EQ(surroundings.fronts, 2);
}

TEST_F(SettingsWindowTest, keepsItsTabWhenItIsClosedAndOpenedAgain) {
  open(VorliSettingsTab::screen);
  press(shown(), Qt::Key_W, Qt::ControlModifier);
  ASSERT_EQ(shown(), nullptr);
  windows.show(*view);
  EXPECT_NE(find<GlassToggle>("Soft edge glow"), nullptr);
}

TEST_F(SettingsWindowTest, closesByEscapeAndByItsButton) {
  open();
  press(shown(), Qt::Key_Escape);
  EXPECT_EQ(shown(), nullptr);
  open();
  find<WindowButton>("Close")->click();
  settleWindows();
  EXPECT_EQ(shown(), nullptr);
}

TEST_F(SettingsWindowTest, aSwitchWritesItsSettingAndFollowsIt) {
  open(VorliSettingsTab::notifications);
  auto* toggle = find<GlassToggle>("Gentle nudges");
  ASSERT_NE(toggle, nullptr);
  EXPECT_FALSE(toggle->isChecked());
  toggle->click();
  EXPECT_TRUE(settings.gentleNudges().get());
  settings.gentleNudges.set(false);
  EXPECT_FALSE(toggle->isChecked());
}

TEST_F(SettingsWindowTest, theDialsPanelIsChosenByPillsAndFollowsItsSetting) {
  open(VorliSettingsTab::screen);
  auto* light = find<QAbstractButton>("Light");
  auto* dark = find<QAbstractButton>("Dark");
  ASSERT_TRUE(light && dark);
  EXPECT_TRUE(find<QAbstractButton>("Auto")->isChecked());
  EXPECT_EQ(light->accessibleDescription(), "Dial on a light or dark panel");
  light->click();
  EXPECT_EQ(settings.dialPanel().get(), "light");
  settings.dialPanel.set("dark");
  EXPECT_TRUE(dark->isChecked());
  EXPECT_FALSE(light->isChecked());
}

TEST_F(SettingsWindowTest, aSwitchThatThisDesktopCannotServeIsInactive) {
  workspace.windowOwners = std::nullopt;
  open();
  EXPECT_FALSE(find<GlassToggle>("Quit hidden apps on Polish")->isEnabled());
  EXPECT_TRUE(find<GlassToggle>("Auto‑polish")->isEnabled());
}

TEST_F(SettingsWindowTest, notificationSwitchesTheTabAtOnce) {
  open();
  notifications.post(SwitchVorliSettingsTab{"about"});
  EXPECT_NE(find<HelperStatusRow>("Background helper"), nullptr);
}

TEST_F(SettingsWindowTest, sneakyAppsTabShowsTheGivenPageAndIsLeftOutWithoutOne) {
  open();
  EXPECT_EQ(find<QAbstractButton>("Sneaky Apps tab"), nullptr);
  windows.close();
  int pages = 0;
  QWidget* given = nullptr;
  windows.setSneakyAppsPage([&pages, &given](Appearance, QWidget* parent) {
    ++pages;
    return given = new QWidget(parent);
  });
  open();
  EXPECT_EQ(pages, 0);
  find<QAbstractButton>("Sneaky Apps tab")->click();
  EXPECT_EQ(pages, 1);
  ASSERT_NE(given, nullptr);
  EXPECT_EQ(given->geometry(), QRect(0, 116, 664, 503));  // leaves the window's lower line free
  EXPECT_EQ(view->selectedTab.get(), VorliSettingsTab::sneakyApps);
}

TEST_F(SettingsWindowTest, recorderTakesACombinationAndEscapeCancelsIt) {
  open();
  auto* recorder = find<HotkeyRecorder>("Global hotkey");
  ASSERT_NE(recorder, nullptr);
  EXPECT_EQ(recorder->spokenValue(), "Current shortcut: opt+shift+C");
  recorder->click();
  EXPECT_EQ(recorder->spokenValue(), "Recording. Press a key combination, or press Escape to cancel.");
  EXPECT_EQ(recorder->accessibleDescription(), "Press Escape to cancel");
  keys.press({.keyCode = 53,
              .modifierFlags = 0,
              .charactersIgnoringModifiers = "",
              .beginsWithLetterOrNumber = false});
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "opt+shift+C");
  recorder->click();
  keys.press({.keyCode = 0,
              .modifierFlags = 0x40000,
              .charactersIgnoringModifiers = "K",
              .beginsWithLetterOrNumber = true});
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "ctrl+K");
  EXPECT_EQ(recorder->spokenValue(), "Current shortcut: ctrl+K");
  settings.globalHotkeyCombo.set("");
  EXPECT_EQ(recorder->spokenValue(), "No shortcut set");
}

TEST_F(SettingsWindowTest, theRecordersDotPulsesWhileItRecords) {
  updates.source = std::nullopt;
  open();
  auto* recorder = find<HotkeyRecorder>("Global hotkey");
  recorder->click();
  const QImage first = recorder->grab().toImage();
  scheduler.advance(0.9);
  EXPECT_NE(recorder->grab().toImage(), first);
  view->hotkeyRow().stopRecording();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  motion.setReduced(true);
  recorder->click();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(SettingsWindowTest, aboutSaysItsVersion) {
  open(VorliSettingsTab::about);
  QStringList texts;
  for (const auto* label : shown()->findChildren<QLabel*>()) texts.push_back(label->text());
  EXPECT_TRUE(texts.contains(QString::fromStdString(view->version())));
}

TEST_F(SettingsWindowTest, reinstallGetsTheFocusBackWhenItIsDone) {
  setHelper(InstallStatus::Case::enabled);
  open(VorliSettingsTab::about);
  auto* reinstall = find<GlassPillButton>("Reinstall");
  reinstall->setFocus(Qt::TabFocusReason);
  reinstall->click();
  ASSERT_FALSE(reinstall->isEnabled());
  EXPECT_NE(shown()->focusWidget(), reinstall);
  for (int second = 0; second < 60 && !reinstall->isEnabled(); ++second) scheduler.advance(1.0);
  ASSERT_TRUE(reinstall->isEnabled());
  EXPECT_EQ(shown()->focusWidget(), reinstall);
}

TEST_F(SettingsWindowTest, closingTheWindowEndsARecording) {
  open();
  find<HotkeyRecorder>("Global hotkey")->click();
  EXPECT_EQ(keys.monitors, 1);
  press(shown(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(keys.monitors, 0);
}

TEST_F(SettingsWindowTest, leavingTheWindowEndsARecordingThatAClickBegan) {
  open();
  auto* recorder = find<HotkeyRecorder>("Global hotkey");
  recorder->click();
  EXPECT_EQ(shown()->focusWidget(), recorder);
  EXPECT_EQ(keys.monitors, 1);
  QFocusEvent left(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QApplication::sendEvent(recorder, &left);
  EXPECT_EQ(keys.monitors, 0);
}

TEST_F(SettingsWindowTest, theHelpersSpinnerTurnsWhileItIsSetUpAndSeen) {
  updates.source = std::nullopt;
  open(VorliSettingsTab::about);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  fakes::publish(helperManager.isInstalling, true);
  auto* row = find<HelperStatusRow>("Background helper");
  const QImage first = row->grab().toImage();
  scheduler.advance(0.083);
  EXPECT_EQ(row->grab().toImage(), first);
  scheduler.advance(0.001);
  EXPECT_NE(row->grab().toImage(), first);
  view->select(VorliSettingsTab::general);
  settleWindows();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(SettingsWindowTest, theHelpersSpinnerRestsWithLessMotion) {
  updates.source = std::nullopt;
  motion.setReduced(true);
  open(VorliSettingsTab::about);
  fakes::publish(helperManager.isInstalling, true);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(SettingsWindowTest, updatesRowAppearsOnceTheyAreConfigured) {
  updates.source = std::nullopt;
  open(VorliSettingsTab::about);
  EXPECT_TRUE(find<LinkRow>("Check for updates")->isHidden());
  const int without = find<LinkRow>("Diagnostics log")->y();
  fakes::publish(updaterManager->isConfigured, true);
  EXPECT_FALSE(find<LinkRow>("Check for updates")->isHidden());
  EXPECT_EQ(find<LinkRow>("Diagnostics log")->y(), without + 56);
}

TEST_F(SettingsWindowTest, unsetAddressesShowNothing) {
  addresses = {"REPLACE_WITH_FEEDBACK_PAGE", ""};
  open(VorliSettingsTab::about);
  EXPECT_EQ(find<QAbstractButton>("Community tab"), nullptr);
  EXPECT_EQ(find<QAbstractButton>("Made by Kelvaran"), nullptr);
  EXPECT_NE(find<QAbstractButton>("Quit Vorli"), nullptr);
}

TEST_F(SettingsWindowTest, tabKeyReachesEachControlInReadingOrderAndTheWindowsButtonsLast) {
  open(VorliSettingsTab::notifications);
  QStringList order;
  QWidget* at = shown();
  for (int i = 0; i < 40; ++i) {
    at = at->nextInFocusChain();
    if (at->window() == shown() && (at->focusPolicy() & Qt::TabFocus) && at->isVisible())
      order.push_back(at->accessibleName());
  }
  order.removeDuplicates();
  EXPECT_EQ(order,
            (QStringList{"General tab", "Notifications tab", "Screen tab", "Community tab", "About tab",
                         "Gentle nudges", "Stay quiet with Do Not Disturb", "Minimise", "Close"}));
}

TEST_F(SettingsWindowTest, drawsAnOpenWindowAnewWhenTheColoursChange) {
  const QImage light = open().grab().toImage();
  const QPoint place(100, 80);
  shown()->move(place);
  auto* const window = shown();
  find<GlassToggle>("Auto‑polish")->setFocus(Qt::TabFocusReason);
  surroundings.change(Appearance::dark);
  settleWindows();
  ASSERT_EQ(shown(), window);
  EXPECT_NE(window->grab().toImage(), light);
  EXPECT_EQ(window->pos(), place);
  EXPECT_EQ(surroundings.fronts, 1);
  EXPECT_EQ(window->focusWidget(), find<GlassToggle>("Auto‑polish"));
  EXPECT_TRUE(find<WindowButton>("Close")->isVisible());
  surroundings.change(Appearance::light);
  settleWindows();
  window->setFocus();
  EXPECT_EQ(window->grab().toImage(), light);
}

TEST_F(SettingsWindowTest, everyControlSaysWhatItIs) {
  setHelper(InstallStatus::Case::enabled);
  for (const auto tab : vorliSettingsTabs) {
    if (tab == VorliSettingsTab::sneakyApps) continue;
    auto& window = open(tab);
    for (auto* control : shownWidgets<Control>(window)) {
      auto* spoken = QAccessible::queryAccessibleInterface(control);
      ASSERT_NE(spoken, nullptr);
      const auto name = spoken->text(QAccessible::Name).toStdString();
      EXPECT_FALSE(name.empty()) << control->metaObject()->className();
      const auto role = spoken->role();
      const bool isPlain = role == QAccessible::Button;
      const bool needsHint = !isPlain || dynamic_cast<HotkeyRecorder*>(control);
      EXPECT_TRUE(!needsHint || !spoken->text(QAccessible::Description).isEmpty()) << name;
      EXPECT_TRUE(isPlain || role == QAccessible::CheckBox || role == QAccessible::PageTab ||
                  role == QAccessible::RadioButton || role == QAccessible::Link)
          << name;
      EXPECT_EQ(spoken->state().checkable, role == QAccessible::CheckBox || role == QAccessible::PageTab ||
                                               role == QAccessible::RadioButton)
          << name;
      EXPECT_FALSE(spoken->actionInterface()->actionNames().isEmpty()) << name;
    }
    windows.close();
  }
}

TEST_F(SettingsWindowTest, textsFitOnEachTab) {
  setHelper(InstallStatus::Case::notFound);
  for (const auto tab : vorliSettingsTabs) {
    if (tab == VorliSettingsTab::sneakyApps) continue;
    auto& window = open(tab);
    expectTextsFit(window, QString::fromUtf8(textsOf(tab).rawName.data()));
    windows.close();
  }
  auto& window = open();
  find<HotkeyRecorder>("Global hotkey")->click();
  expectTextsFit(window, QStringLiteral("recording"), {qtText(*view->hotkeyRow().prompt())});
  view->hotkeyRow().stopRecording();
}

TEST_F(SettingsWindowTest, textsFitBesideAHelperThatIsBeingReinstalled) {
  setHelper(InstallStatus::Case::enabled);
  auto& window = open(VorliSettingsTab::about);
  find<GlassPillButton>("Reinstall")->click();
  expectTextsFit(window, QStringLiteral("reinstalling"), {QStringLiteral("Reinstalling…")});
}

// Returns the largest difference between two colours of the same pixel, in levels of 255.
int largestDifference(const QImage& one, const QImage& other) {
  if (one.size() != other.size()) return 255;
  int largest = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      const QColor a = one.pixelColor(x, y), b = other.pixelColor(x, y);
      largest = std::max({largest, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                          std::abs(a.blue() - b.blue())});
    }
  }
  return largest;
}

TEST_F(SettingsWindowTest, aNewPageFadesInAndRisesToItsPlace) {
  surroundings.moves.emplace(WindowMotion{scheduler, motion});
  updates.source = std::nullopt;
  auto& window = open();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  const auto page = [] {
    const auto pages = shownWidgets<SettingsPage>(*shown());
    EXPECT_EQ(pages.size(), 1);
    return pages.back();
  };
  const QPoint place = page()->pos();
  const QRect inside(place + QPoint(20, 60), QSize(600, 500));  // without the corners and the buttons
  const QImage before = window.grab(inside).toImage();
  view->select(VorliSettingsTab::screen);
  EXPECT_EQ(page()->pos(), place + QPoint(0, 6));
  EXPECT_LE(largestDifference(window.grab(inside).toImage(), before), 1);  // a hairline is rounded twice
  scheduler.advance(0.05);
  const int between = page()->y();
  EXPECT_LE(between, place.y() + 5);
  scheduler.advance(0.3);
  EXPECT_EQ(page()->pos(), place);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  const QImage after = window.grab().toImage();
  view->select(VorliSettingsTab::general);
  motion.setReduced(true);
  scheduler.advance(0.3);
  view->select(VorliSettingsTab::screen);
  EXPECT_EQ(page()->pos(), place);
  scheduler.advance(0.2);
  EXPECT_EQ(window.grab().toImage(), after);
}

// Writes pictures for people to look at into the folder VORLI_PICTURES, if that is set.
TEST_F(SettingsWindowTest, eachTabStaysInsideItsWindowAndIsItself) {
  const QString folder = qEnvironmentVariable("VORLI_PICTURES");
  QList<QImage> pictures;
  for (const auto look : {Appearance::light, Appearance::dark}) {
    surroundings.look = look;
    for (const auto tab : vorliSettingsTabs) {
      if (tab == VorliSettingsTab::sneakyApps) continue;
      setHelper(InstallStatus::Case::enabled);
      auto& window = open(tab);
      const QString name =
          QString::fromUtf8(textsOf(tab).rawName.data()) + (look == Appearance::dark ? "-dark" : "-light");
      const QImage picture = window.grab().toImage();
      EXPECT_FALSE(pictures.contains(picture)) << name.toStdString();
      pictures.push_back(picture);
      if (!folder.isEmpty()) picture.save(QDir(folder).filePath(name + ".png"));
      for (const auto* child : window.findChildren<QWidget*>()) {
        const auto* control = dynamic_cast<const Control*>(child);
        if (!control) continue;
        const QRect place(control->mapTo(&window, QPoint()), control->size());
        EXPECT_TRUE(window.rect().contains(place)) << control->accessibleName().toStdString();
      }
      windows.close();
    }
  }
}

}  // namespace
}  // namespace vorli::ui

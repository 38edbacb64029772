#include "startup/StartupToasts.h"
#include "tests/fakes/Publish.h"
#include "tests/startup/StartupAppsFixture.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;
using Reason = HelperUnavailable::Reason;

struct StartupToastsTest : StartupAppsFixture {
  static constexpr const char* removed = "/home/kim/Library/LaunchAgents/a.plist.vorli-removed";

  StartupToastsTest() {
    files.add("/home/kim/Library/LaunchAgents/a.plist");
    view.appear();
    settle();
  }
  void press(RowVerb verb) {
    view.press(row("a"), verb);
    scheduler.runReady();
  }
  void showUnavailable(Reason reason) {
    fakes::publish(startup->helperUnavailable, HelperUnavailable{"Acme", calendar.now(), reason});
    scheduler.runReady();
  }
};

TEST_F(StartupToastsTest, aRemovalIsAnnouncedWithItsUndo) {
  press(RowVerb::remove);
  ASSERT_TRUE(view.undoToast());
  EXPECT_EQ(announcements.said, Strings{"Removed a. Six seconds to undo."});
  EXPECT_EQ(view.undoToast()->word(), "Removed");
  EXPECT_EQ(view.undoToast()->action().displayName, "a");
  EXPECT_EQ(view.undoToast()->undoAccessibilityLabel(), "Undo removed a");
  EXPECT_EQ(UndoToastView::symbol, "checkmark.circle.fill");
  EXPECT_EQ(UndoToastView::undoTitle, "Undo");
}

TEST_F(StartupToastsTest, aPauseIsAnnouncedToo) {
  press(RowVerb::disable);
  EXPECT_EQ(announcements.said, Strings{"Paused a. Six seconds to undo."});
  EXPECT_EQ(view.undoToast()->word(), "Paused");
  EXPECT_EQ(view.undoToast()->undoAccessibilityLabel(), "Undo paused a");
}

TEST_F(StartupToastsTest, theCountdownTakesSixtySteps) {
  press(RowVerb::remove);
  EXPECT_EQ(view.undoToast()->elapsed.get(), 0.0);
  EXPECT_EQ(view.undoToast()->countdownProgress(), 1.0);
  scheduler.advance(0.099);
  EXPECT_EQ(view.undoToast()->elapsed.get(), 0.0);
  scheduler.advance(0.002);
  EXPECT_EQ(view.undoToast()->elapsed.get(), 1.0 / 60.0);
  scheduler.advance(2.9);
  EXPECT_EQ(view.undoToast()->elapsed.get(), 0.5);
  EXPECT_EQ(view.undoToast()->countdownProgress(), 0.5);
}

TEST_F(StartupToastsTest, aRemovalIsFinalAfterSixSeconds) {
  press(RowVerb::remove);
  scheduler.advance(5.99);
  EXPECT_TRUE(startup->pendingUndo.get());
  EXPECT_TRUE(files.exists(removed));
  scheduler.advance(0.02);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_FALSE(view.undoToast());
  settle();
  EXPECT_FALSE(files.exists(removed));
}

TEST_F(StartupToastsTest, aPauseStaysAfterSixSeconds) {
  press(RowVerb::disable);
  scheduler.advance(6.01);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  settle();
  EXPECT_TRUE(files.exists("/home/kim/Library/LaunchAgents/a.plist.vorli-disabled"));
}

TEST_F(StartupToastsTest, undoTakesTheActionBack) {
  press(RowVerb::remove);
  scheduler.advance(5.0);
  view.undoToast()->undoPressed();
  scheduler.advance(5.0);
  EXPECT_TRUE(files.exists("/home/kim/Library/LaunchAgents/a.plist"));
  EXPECT_FALSE(view.undoToast());

  press(RowVerb::disable);
  view.undoToast()->undoPressed();
  scheduler.advance(5.0);
  EXPECT_TRUE(files.exists("/home/kim/Library/LaunchAgents/a.plist"));
  EXPECT_FALSE(view.undoToast());
}

TEST_F(StartupToastsTest, anUndoThatCannotBringTheFileBackDoesNotDeleteIt) {
  press(RowVerb::remove);
  scheduler.advance(5.5);
  files.add("/home/kim/Library/LaunchAgents/a.plist", "made meanwhile");
  background.seconds = 3.0;
  view.undoToast()->undoPressed();
  scheduler.advance(30.0);
  EXPECT_TRUE(files.exists(removed));
  EXPECT_EQ(files.files["/home/kim/Library/LaunchAgents/a.plist"].content, "made meanwhile");
}

TEST_F(StartupToastsTest, anotherActionStartsItsOwnCountdown) {
  files.add("/home/kim/Library/LaunchAgents/b.plist");
  press(RowVerb::remove);
  scheduler.advance(4.0);
  view.press(row("b"), RowVerb::disable);
  scheduler.runReady();
  EXPECT_EQ(view.undoToast()->elapsed.get(), 0.0);
  EXPECT_EQ(announcements.said,
            (Strings{"Removed a. Six seconds to undo.", "Paused b. Six seconds to undo."}));
  scheduler.advance(5.9);
  EXPECT_TRUE(view.undoToast());
  scheduler.advance(0.2);
  EXPECT_FALSE(view.undoToast());
  settle();
  EXPECT_TRUE(files.exists(removed));  // its count was never finished
}

TEST_F(StartupToastsTest, aClosedListStopsTheCountdownAndRestartsIt) {
  press(RowVerb::remove);
  scheduler.advance(5.0);
  view.disappear();
  scheduler.advance(60.0);
  EXPECT_TRUE(files.exists(removed));
  EXPECT_TRUE(startup->pendingUndo.get());

  view.appear();
  scheduler.runReady();
  EXPECT_EQ(view.undoToast()->elapsed.get(), 0.0);
  EXPECT_EQ(announcements.said.size(), 2u);
  scheduler.advance(6.01);
  settle();
  EXPECT_FALSE(files.exists(removed));
}

TEST_F(StartupToastsTest, aHelperThatDoesNotRespondCanBeReinstalled) {
  showUnavailable(Reason::notResponding);
  const auto* toast = view.helperToast();
  ASSERT_TRUE(toast);
  EXPECT_EQ(toast->symbol(), "wrench.and.screwdriver.fill");
  EXPECT_EQ(toast->textBeforeName(), "Helper isn't responding. Couldn't remove ");
  EXPECT_EQ(toast->text(), "Helper isn't responding. Couldn't remove Acme");
  EXPECT_EQ(announcements.said,
            Strings{"Helper isn't responding. Couldn't remove Acme. Press Reinstall to try again."});
  EXPECT_EQ(toast->buttonTitle(), "Reinstall");
  EXPECT_EQ(toast->buttonAccessibilityLabel(), "Reinstall background helper");
  EXPECT_EQ(toast->buttonAccessibilityHint(), "Rebuilds the helper. Try Remove on Acme again afterwards.");
  view.helperToastPressed();
  scheduler.advance(10.0);
  EXPECT_EQ(service.calls, (Strings{"unregister", "register"}));
}

TEST_F(StartupToastsTest, aHelperWithoutApprovalLeadsToIt) {
  showUnavailable(Reason::notApproved);
  const auto* toast = view.helperToast();
  EXPECT_EQ(toast->symbol(), "exclamationmark.triangle.fill");
  EXPECT_EQ(toast->text(), "Approve Vorli under Allow in the Background to remove Acme");
  EXPECT_EQ(announcements.said, Strings{"Approve Vorli under Allow in the Background to remove Acme. System "
                                        "Settings is now open."});
  EXPECT_EQ(toast->buttonTitle(), "Open Settings");
  EXPECT_EQ(toast->buttonAccessibilityLabel(), "Open Login Items in System Settings");
  EXPECT_EQ(toast->buttonAccessibilityHint(), "Approve Vorli under Allow in the Background to remove Acme");
  view.helperToastPressed();
  EXPECT_EQ(service.calls, Strings{"ask for consent"});
}

TEST_F(StartupToastsTest, onLinuxAPasswordIsNeeded) {
  view.disappear();
  linuxView.appear();
  showUnavailable(Reason::notApproved);
  const auto* toast = linuxView.helperToast();
  EXPECT_EQ(toast->text(), "Your password is needed to change Acme");
  scheduler.advance(0.299);
  EXPECT_TRUE(announcements.said.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(announcements.said,
            Strings{"Your password is needed to change Acme. The password window is now open."});
  EXPECT_EQ(toast->buttonTitle(), "Ask again");
  EXPECT_EQ(toast->buttonAccessibilityLabel(), "Ask for the password again");
  EXPECT_EQ(toast->buttonAccessibilityHint(), "Your password is needed to change Acme");
}

TEST_F(StartupToastsTest, aPasswordWindowThatCannotOpenIsNotAnnounced) {
  const std::string reason = "No password window could be opened. Ask an administrator.";
  service.consentResult = std::unexpected(reason);
  view.disappear();
  linuxView.appear();
  manager->askForStartupItemConsent();
  showUnavailable(Reason::notApproved);
  const auto* toast = linuxView.helperToast();
  ASSERT_TRUE(toast);
  EXPECT_EQ(toast->textBeforeName(), "");
  EXPECT_EQ(toast->text(), reason);
  EXPECT_EQ(toast->buttonTitle(), "Ask again");
  EXPECT_EQ(toast->buttonAccessibilityHint(), reason);
  scheduler.advance(1.0);
  EXPECT_EQ(announcements.said, Strings{reason});
}

TEST_F(StartupToastsTest, aReasonThatComesLateIsShownAndAnnouncedToo) {
  const std::string reason = "No password window could be opened. Ask an administrator.";
  service.consentResult = std::unexpected(reason);
  service.consentSeconds = 2.0;
  view.disappear();
  linuxView.appear();
  manager->askForStartupItemConsent();
  showUnavailable(Reason::notApproved);
  int changes = 0;
  const auto subscription = linuxView.subscribeToContent([&changes](const auto&) { ++changes; });
  scheduler.advance(1.9);
  EXPECT_EQ(linuxView.helperToast()->text(), "Your password is needed to change Acme");
  changes = 0;
  scheduler.advance(0.2);
  EXPECT_EQ(linuxView.helperToast()->text(), reason);
  EXPECT_GT(changes, 0);
  EXPECT_EQ(announcements.said,
            (Strings{"Your password is needed to change Acme. The password window is now open.", reason}));
}

TEST_F(StartupToastsTest, aPasswordThatWasNotEnteredHasNoWindowOpen) {
  view.disappear();
  linuxView.appear();
  showUnavailable(Reason::declined);
  const auto* toast = linuxView.helperToast();
  EXPECT_EQ(toast->symbol(), "exclamationmark.triangle.fill");
  EXPECT_EQ(toast->text(), "Your password is needed to change Acme");
  EXPECT_EQ(announcements.said,
            Strings{"Your password is needed to change Acme. Press Ask again to enter it."});
  EXPECT_EQ(toast->buttonTitle(), "Ask again");
  linuxView.helperToastPressed();
  EXPECT_TRUE(service.calls.empty());  // the helper has nothing to do with this password
}

TEST_F(StartupToastsTest, anApplicationThatCannotBeAskedToQuitIsLeftToTheUser) {
  showUnavailable(Reason::closedByHand);
  const auto* toast = view.helperToast();
  ASSERT_TRUE(toast);
  EXPECT_EQ(toast->symbol(), "exclamationmark.triangle.fill");
  EXPECT_EQ(toast->textBeforeName(), "");
  EXPECT_EQ(toast->text(), "Acme has to be closed by hand on this desktop.");
  EXPECT_EQ(announcements.said, Strings{"Acme has to be closed by hand on this desktop."});
  EXPECT_EQ(toast->buttonTitle(), "OK");
  EXPECT_EQ(toast->buttonAccessibilityLabel(), "OK");
  EXPECT_EQ(toast->buttonAccessibilityHint(), "Acme has to be closed by hand on this desktop.");
  view.helperToastPressed();
  scheduler.runReady();
  EXPECT_FALSE(view.helperToast());
  EXPECT_TRUE(service.calls.empty());
}

TEST_F(StartupToastsTest, theHelpersToastPassesAfterSevenSeconds) {
  showUnavailable(Reason::notResponding);
  scheduler.advance(6.99);
  EXPECT_TRUE(view.helperToast());
  scheduler.advance(0.02);
  EXPECT_FALSE(view.helperToast());
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
}

TEST_F(StartupToastsTest, aNewReasonTakesThePlaceOfAnOldOne) {
  showUnavailable(Reason::notResponding);
  scheduler.advance(5.0);
  showUnavailable(Reason::notApproved);
  scheduler.advance(5.0);
  EXPECT_EQ(view.helperToast()->state().reason, Reason::notApproved);
  scheduler.advance(2.1);
  EXPECT_FALSE(view.helperToast());
}

TEST_F(StartupToastsTest, bothToastsCanBeThereAtOnce) {
  press(RowVerb::remove);
  showUnavailable(Reason::notApproved);
  EXPECT_TRUE(view.undoToast());
  EXPECT_TRUE(view.helperToast());
}

}  // namespace
}  // namespace vorli

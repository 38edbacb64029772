#include "startup/StartupAppRow.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

constexpr Date shownAt{1'800'000'000.0};
const auto& macOSWords = StartupAppsTexts::macOS;
const auto& linuxWords = StartupAppsTexts::linuxDesktop;

struct StartupAppRowTest : testing::Test {
  StartupAppRowTest() {
    item.displayName = "Acme";
    item.description = "Does things.";
    item.plistURL = "/Library/LaunchAgents/acme.plist";
  }
  StartupAppRow row(const StartupAppsTexts& texts = macOSWords) const { return {item, texts}; }
  RowButton button(std::size_t index) const { return row().buttons().at(index); }

  StartupItem item;
};

TEST_F(StartupAppRowTest, aPausedRowIsFaint) {
  EXPECT_EQ(row().opacity(), 1.0);
  item.isEnabled = false;
  EXPECT_EQ(row().opacity(), 0.62);
}

TEST_F(StartupAppRowTest, badgesShowWhatIsSpecial) {
  using enum RowBadge;
  EXPECT_TRUE(row().badges().empty());
  item.isNewSinceLastVisit = true;
  item.isEnabled = false;
  EXPECT_EQ(row().badges(), (std::vector<RowBadge>{newItem, disabled}));
  item.isLeftover = true;
  EXPECT_EQ(row().badges(), std::vector<RowBadge>{leftover});
  EXPECT_EQ(badgeText(leftover), "LEFTOVER");
  EXPECT_EQ(badgeText(newItem), "NEW");
  EXPECT_EQ(badgeText(disabled), "DISABLED");
}

TEST_F(StartupAppRowTest, theSecondLineJoinsStatusAndOrigin) {
  item.firstSeenAt = shownAt + -3 * 86400.0;
  item.installerName = "Acme Inc";
  EXPECT_EQ(row().metaLine(shownAt), "Idle · Hidden install, 3 days old, by Acme Inc");
}

TEST_F(StartupAppRowTest, theSpokenLabelSaysAllOfIt) {
  EXPECT_EQ(row().accessibilityLabel(shownAt), "Acme, Does things., Idle, Hidden install");
  item.isNewSinceLastVisit = true;
  item.isEnabled = false;
  EXPECT_EQ(row().accessibilityLabel(shownAt),
            "Acme, new since your last visit, disabled, Does things., Disabled, Hidden install");
  item.isLeftover = true;
  EXPECT_EQ(row().accessibilityLabel(shownAt),
            "Acme, leftover, safe to remove, Does things., Disabled, Hidden install");
}

TEST_F(StartupAppRowTest, aLeftoverCanOnlyBeRemoved) {
  item.isLeftover = true;
  item.runningAppBundleID = "com.acme";
  ASSERT_EQ(row().buttons().size(), 1u);
  EXPECT_EQ(
      button(0),
      (RowButton{.verb = RowVerb::remove,
                 .title = "Remove",
                 .toolTip = "Delete this leftover login item. You can undo for a few seconds.",
                 .accessibilityLabel = "Remove Acme",
                 .accessibilityHint = "Deletes this leftover login item. You can undo for a few seconds."}));
}

TEST_F(StartupAppRowTest, aPausedRowCanBeEnabled) {
  item.isEnabled = false;
  EXPECT_EQ(button(0), (RowButton{.verb = RowVerb::enable,
                                  .title = "Enable",
                                  .toolTip = "Re-enable this app so it can launch at login.",
                                  .accessibilityLabel = "Enable Acme",
                                  .accessibilityHint = "Lets Acme launch at login again."}));
}

TEST_F(StartupAppRowTest, anEnabledRowCanBeDisabled) {
  EXPECT_EQ(button(0),
            (RowButton{.verb = RowVerb::disable,
                       .title = "Disable",
                       .toolTip = "Stop this app from launching at login. You can re-enable it any time.",
                       .accessibilityLabel = "Disable Acme",
                       .accessibilityHint = "Stops Acme launching at login. You can re-enable any time."}));
}

TEST_F(StartupAppRowTest, aRowWithoutAFileIsLeftToTheSystem) {
  item.plistURL.reset();
  EXPECT_EQ(row(macOSWords).buttons()[0].toolTip, "Managed by macOS. Click to open System Settings.");
  EXPECT_EQ(row(macOSWords).buttons()[0].accessibilityHint,
            "Opens System Settings, where you can turn this off.");
  EXPECT_EQ(row(linuxWords).buttons()[0].toolTip,
            "Managed by your system. Click to open its startup settings.");
  EXPECT_EQ(row(linuxWords).buttons()[0].accessibilityHint,
            "Opens your system's startup settings, where you can turn this off.");
  EXPECT_EQ(button(0).title, "Disable");
  EXPECT_EQ(button(0).accessibilityLabel, "Disable Acme");
}

TEST_F(StartupAppRowTest, quitIsActiveForAnEnabledRunningApplication) {
  const RowButton inactive{
      .verb = RowVerb::quit,
      .title = "Quit",
      .toolTip = "Nothing to quit - this app isn't currently running.",
      .accessibilityLabel = "Quit Acme",
      .accessibilityHint = "Closes Acme now. It can still launch later if it stays enabled.",
      .accessibilityValue = "unavailable, app is not running",
      .isActive = false};
  EXPECT_EQ(button(1), inactive);
  item.runningAppBundleID = "com.acme";
  EXPECT_TRUE(button(1).isActive);
  EXPECT_EQ(button(1).accessibilityValue, "available");
  EXPECT_EQ(button(1).toolTip, "Quit the running app now. It can still launch later if you keep it enabled.");
  item.isEnabled = false;
  EXPECT_EQ(button(1), inactive);
}

TEST_F(StartupAppRowTest, theCalloutNamesTheWorstOfIt) {
  item.isRunning = true;
  item.cpuPercent = 5.0;
  item.memoryMB = 900.0;
  EXPECT_EQ(row().calloutHeading(), "This one is working hard even when you're not using it.");
  item.cpuPercent = 4.99;
  EXPECT_EQ(row().calloutHeading(), "This one is holding a lot in the background.");
  item.memoryMB = 399.9;
  EXPECT_EQ(row().calloutHeading(), "This one is using more than its share.");
  item.cpuPercent = 50.0;
  item.isRunning = false;
  EXPECT_EQ(row().calloutHeading(), "This one is using more than its share.");
  EXPECT_EQ(row().calloutBody(),
            "You can safely pause it. Acme will still open when you need it, just without waking up in the "
            "background.");
}

TEST_F(StartupAppRowTest, questionsNameTheVerbAndTheItem) {
  EXPECT_EQ(row().confirmationTitle(RowVerb::disable), "Disable Acme?");
  EXPECT_EQ(row().confirmationTitle(RowVerb::remove), "Remove Acme?");
  EXPECT_EQ(row().confirmationTitle(RowVerb::quit), "Quit Acme?");
  EXPECT_EQ(StartupAppRow::confirmationMessage,
            "This app might be doing something important. You can turn it back on any time.");
}

}  // namespace
}  // namespace vorli

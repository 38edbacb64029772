#include "app/StatusMenu.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

// The rows from the top, "-" for a separator.
std::vector<std::string> titles(const std::vector<ports::MenuRow>& rows) {
  std::vector<std::string> result;
  for (const auto& row : rows) {
    result.push_back(row.kind == ports::MenuRow::Kind::separator ? "-" : row.title);
  }
  return result;
}

struct StatusMenuTest : testing::Test {
  std::string chosen;
  StatusMenuActions actions{.menuClearNow = [this] { chosen += "clear "; },
                            .menuRestartDock = [this] { chosen += "dock "; },
                            .menuRestartFinder = [this] { chosen += "finder "; },
                            .menuCheckForUpdates = [this] { chosen += "updates "; },
                            .menuOpenLoginItems = [this] { chosen += "items "; },
                            .menuAbout = [this] { chosen += "about "; },
                            .menuQuit = [this] { chosen += "quit "; }};
};

TEST_F(StatusMenuTest, hasTheseRowsWithUpdates) {
  EXPECT_EQ(titles(statusMenu(actions, UpdatesState::configured, StatusTexts::macOS)),
            (std::vector<std::string>{"Polish Now", "-", "Restart Dock", "Restart Finder", "-",
                                      "Check for Updates…", "Open Login Items", "-", "About Vorli", "-",
                                      "Quit Vorli"}));
}

TEST_F(StatusMenuTest, hasNoUpdateRowWithoutThem) {
  EXPECT_EQ(titles(statusMenu(actions, UpdatesState::unconfigured, StatusTexts::macOS)),
            (std::vector<std::string>{"Polish Now", "-", "Restart Dock", "Restart Finder", "-",
                                      "Open Login Items", "-", "About Vorli", "-", "Quit Vorli"}));
}

TEST_F(StatusMenuTest, onLinuxItNamesThePanelAndTheFileManager) {
  EXPECT_EQ(titles(statusMenu(actions, UpdatesState::configured, StatusTexts::linuxDesktop)),
            (std::vector<std::string>{"Polish Now", "-", "Restart Panel", "Restart File Manager", "-",
                                      "Check for Updates…", "Open Startup Applications", "-", "About Vorli",
                                      "-", "Quit Vorli"}));
}

TEST_F(StatusMenuTest, everyRowDoesItsOwnAction) {
  for (const auto& row : statusMenu(actions, UpdatesState::configured)) {
    EXPECT_EQ(static_cast<bool>(row.action), row.kind == ports::MenuRow::Kind::action) << row.title;
    if (row.action) row.action();
  }
  EXPECT_EQ(chosen, "clear dock finder updates items about quit ");
}

TEST_F(StatusMenuTest, onlyQuitHasAKey) {
  for (const auto& row : statusMenu(actions, UpdatesState::configured)) {
    EXPECT_EQ(row.keyEquivalent, row.title == "Quit Vorli" ? "q" : "") << row.title;
  }
}

}  // namespace
}  // namespace vorli

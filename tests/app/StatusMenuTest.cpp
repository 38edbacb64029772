#include "app/StatusMenu.h"

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
  StatusMenuActions actions{[this] { chosen += "clear "; },  [this] { chosen += "dock "; },
                            [this] { chosen += "finder "; }, [this] { chosen += "updates "; },
                            [this] { chosen += "items "; },  [this] { chosen += "about "; },
                            [this] { chosen += "quit "; }};
};

TEST_F(StatusMenuTest, hasElevenRowsWithUpdates) {
  EXPECT_EQ(titles(statusMenu(actions, UpdatesState::configured)),
            (std::vector<std::string>{"Polish Now", "-", "Restart Dock", "Restart Finder", "-",
                                      "Check for Updates…", "Open Login Items", "-", "About Vorli", "-",
                                      "Quit Vorli"}));
}

TEST_F(StatusMenuTest, hasNoUpdateRowWithoutThem) {
  EXPECT_EQ(titles(statusMenu(actions, UpdatesState::unconfigured)),
            (std::vector<std::string>{"Polish Now", "-", "Restart Dock", "Restart Finder", "-",
                                      "Open Login Items", "-", "About Vorli", "-", "Quit Vorli"}));
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

#include "app/StatusMenu.h"

namespace vorli {
namespace {

ports::MenuRow action(std::string_view title, std::function<void()> act, std::string keyEquivalent = {}) {
  return {ports::MenuRow::Kind::action, std::string(title), std::move(keyEquivalent), std::move(act)};
}

ports::MenuRow separator() {
  return {.kind = ports::MenuRow::Kind::separator, .title = {}, .keyEquivalent = {}, .action = {}};
}

}  // namespace

std::vector<ports::MenuRow> statusMenu(const StatusMenuActions& actions, UpdatesState updates,
                                       const StatusTexts& texts) {
  std::vector<ports::MenuRow> rows{
      action("Polish Now", actions.menuClearNow),
      separator(),
      action(texts.restartDock, actions.menuRestartDock),
      action(texts.restartFinder, actions.menuRestartFinder),
      separator(),
  };
  if (updates == UpdatesState::configured) {
    rows.push_back(action("Check for Updates…", actions.menuCheckForUpdates));
  }
  rows.push_back(action(texts.openLoginItems, actions.menuOpenLoginItems));
  rows.push_back(separator());
  rows.push_back(action("About Vorli", actions.menuAbout));
  rows.push_back(separator());
  rows.push_back(action("Quit Vorli", actions.menuQuit, "q"));
  return rows;
}

}  // namespace vorli

#include "app/StatusMenu.h"

namespace vorli {
namespace {

ports::MenuRow action(std::string title, std::function<void()> act, std::string keyEquivalent = {}) {
  return {ports::MenuRow::Kind::action, std::move(title), std::move(keyEquivalent), std::move(act)};
}

ports::MenuRow separator() {
  return {.kind = ports::MenuRow::Kind::separator, .title = {}, .keyEquivalent = {}, .action = {}};
}

}  // namespace

std::vector<ports::MenuRow> statusMenu(const StatusMenuActions& actions, UpdatesState updates) {
  std::vector<ports::MenuRow> rows{
      action("Polish Now", actions.menuClearNow),
      separator(),
      action("Restart Dock", actions.menuRestartDock),
      action("Restart Finder", actions.menuRestartFinder),
      separator(),
  };
  if (updates == UpdatesState::configured) {
    rows.push_back(action("Check for Updates…", actions.menuCheckForUpdates));
  }
  rows.push_back(action("Open Login Items", actions.menuOpenLoginItems));
  rows.push_back(separator());
  rows.push_back(action("About Vorli", actions.menuAbout));
  rows.push_back(separator());
  rows.push_back(action("Quit Vorli", actions.menuQuit, "q"));
  return rows;
}

}  // namespace vorli

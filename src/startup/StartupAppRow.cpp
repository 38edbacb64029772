#include "startup/StartupAppRow.h"

namespace vorli {

namespace {

constexpr double hardWorkPercent = 5.0;
constexpr double muchMemoryMegabytes = 400.0;

}  // namespace

std::string_view badgeText(RowBadge badge) {
  switch (badge) {
    case RowBadge::leftover:
      return "LEFTOVER";
    case RowBadge::newItem:
      return "NEW";
    case RowBadge::disabled:
      return "DISABLED";
  }
  return {};
}

std::string_view verbText(RowVerb verb) {
  switch (verb) {
    case RowVerb::disable:
      return "Disable";
    case RowVerb::enable:
      return "Enable";
    case RowVerb::remove:
      return "Remove";
    case RowVerb::quit:
      return "Quit";
  }
  return {};
}

std::vector<RowBadge> StartupAppRow::badges() const {
  if (item_.isLeftover) return {RowBadge::leftover};
  std::vector<RowBadge> badges;
  if (item_.isNewSinceLastVisit) badges.push_back(RowBadge::newItem);
  if (!item_.isEnabled) badges.push_back(RowBadge::disabled);
  return badges;
}

std::string StartupAppRow::metaLine(Date now) const {
  std::string line(statusWord(item_));
  if (const auto origin = originLine(item_, now); !origin.empty()) line += " · " + origin;
  return line;
}

std::string StartupAppRow::accessibilityLabel(Date now) const {
  std::string label = item_.displayName;
  const auto add = [&label](std::string_view piece) { label.append(", ").append(piece); };
  if (item_.isLeftover) {
    add("leftover, safe to remove");
  } else {
    if (item_.isNewSinceLastVisit) add("new since your last visit");
    if (!item_.isEnabled) add("disabled");
  }
  add(item_.description);
  add(statusWord(item_));
  add(originLine(item_, now));
  return label;
}

std::vector<RowButton> StartupAppRow::buttons() const {
  std::vector<RowButton> buttons{mainButton()};
  if (!item_.isLeftover) buttons.push_back(quitButton());
  return buttons;
}

RowButton StartupAppRow::mainButton() const {
  const auto& name = item_.displayName;
  if (item_.isLeftover) {
    return {.verb = RowVerb::remove,
            .title = "Remove",
            .toolTip = "Delete this leftover login item. You can undo for a few seconds.",
            .accessibilityLabel = "Remove " + name,
            .accessibilityHint = "Deletes this leftover login item. You can undo for a few seconds."};
  }
  if (item_.isEnabled) return disableButton();
  return {.verb = RowVerb::enable,
          .title = "Enable",
          .toolTip = "Re-enable this app so it can launch at login.",
          .accessibilityLabel = "Enable " + name,
          .accessibilityHint = "Lets " + name + " launch at login again."};
}

RowButton StartupAppRow::disableButton() const {
  const auto& name = item_.displayName;
  RowButton button{.verb = RowVerb::disable,
                   .title = "Disable",
                   .toolTip = "Stop this app from launching at login. You can re-enable it any time.",
                   .accessibilityLabel = "Disable " + name,
                   .accessibilityHint = "Stops " + name + " launching at login. You can re-enable any time."};
  if (!item_.plistURL) {
    button.toolTip = texts_.managedToolTip;
    button.accessibilityHint = texts_.managedHint;
  }
  return button;
}

RowButton StartupAppRow::quitButton() const {
  const auto& name = item_.displayName;
  const bool isActive = item_.runningAppBundleID && item_.isEnabled && !item_.isLeftover;
  return {.verb = RowVerb::quit,
          .title = "Quit",
          .toolTip = isActive ? "Quit the running app now. It can still launch later if you keep it enabled."
                              : "Nothing to quit - this app isn't currently running.",
          .accessibilityLabel = "Quit " + name,
          .accessibilityHint = "Closes " + name + " now. It can still launch later if it stays enabled.",
          .accessibilityValue = isActive ? "available" : "unavailable, app is not running",
          .isActive = isActive};
}

std::string_view StartupAppRow::calloutHeading() const {
  if (item_.isRunning && item_.cpuPercent >= hardWorkPercent)
    return "This one is working hard even when you're not using it.";
  if (item_.memoryMB >= muchMemoryMegabytes) return "This one is holding a lot in the background.";
  return "This one is using more than its share.";
}

std::string StartupAppRow::calloutBody() const {
  return "You can safely pause it. " + item_.displayName +
         " will still open when you need it, just without waking up in the background.";
}

std::string StartupAppRow::confirmationTitle(RowVerb verb) const {
  return std::string(verbText(verb)) + " " + item_.displayName + "?";
}

}  // namespace vorli

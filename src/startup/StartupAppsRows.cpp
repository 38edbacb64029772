#include "startup/StartupAppsView.h"

#include <utility>

namespace vorli {

namespace {

using CreateUndo = StartupItemService::CreateUndo;

constexpr double removalSeconds = 0.22;
constexpr double calloutSeconds = 0.35;

}  // namespace

std::optional<RowConfirmation> StartupAppsView::pendingConfirmation(const StartupItem& item) const {
  const auto row = rows_.find(item.id);
  return row == rows_.end() ? std::nullopt : row->second.pendingConfirmation;
}

void StartupAppsView::press(const StartupItem& item, RowVerb verb) {
  if (!item.requiresConfirmation || verb == RowVerb::enable) {
    perform(item, verb);
    return;
  }
  rows_[item.id].pendingConfirmation = RowConfirmation{.id = item.id + " " + std::string(verbText(verb)),
                                                       .title = row(item).confirmationTitle(verb),
                                                       .message = StartupAppRow::confirmationMessage,
                                                       .actionLabel = verbText(verb),
                                                       .action = [this, item, verb] {
                                                         confirmationCancelled(item);
                                                         perform(item, verb);
                                                       }};
  contentChanged();
}

void StartupAppsView::confirmationCancelled(const StartupItem& item) {
  if (const auto row = rows_.find(item.id); row != rows_.end()) row->second.pendingConfirmation.reset();
  contentChanged();
}

void StartupAppsView::perform(const StartupItem& item, RowVerb verb) {
  switch (verb) {
    case RowVerb::disable:
      service_.setEnabled(Enablement::paused, item, CreateUndo::yes);
      break;
    case RowVerb::enable:
      service_.setEnabled(Enablement::enabled, item, CreateUndo::yes);
      break;
    case RowVerb::remove:
      if (item.plistURL) nextAnimation_ = Animation::easeOut(removalSeconds);  // else nothing is removed
      service_.remove(item, CreateUndo::yes);
      break;
    case RowVerb::quit:
      service_.quit(item);
      break;
  }
}

std::optional<StartupCalloutView> StartupAppsView::callout(const StartupAppsSection& section,
                                                           const StartupItem& item) {
  if (!section.isFlaggedGroup || !item.isEnabled || item.isLeftover) return std::nullopt;
  const auto state = rows_.find(item.id);
  if (state != rows_.end() && state->second.isCalloutHidden) return std::nullopt;

  return StartupCalloutView{
      .heading = row(item).calloutHeading(),
      .body = row(item).calloutBody(),
      .buttons = {{{.title = "Pause it",
                    .style = CalloutButton::Style::primary,
                    .action =
                        [this, item] {
                          service_.setEnabled(Enablement::paused, item, CreateUndo::yes);
                          hideCallout(item.id, std::nullopt);
                        }},
                   {.title = "Keep it on", .style = CalloutButton::Style::secondary, .action = [this, item] {
                      hideCallout(item.id, Animation::easeOut(calloutSeconds));
                    }}}}};
}

void StartupAppsView::hideCallout(const std::string& itemID, const std::optional<Animation>& animation) {
  rows_[itemID].isCalloutHidden = true;
  contentChanged(animation);
}

}  // namespace vorli

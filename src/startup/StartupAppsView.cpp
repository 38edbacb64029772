#include "startup/StartupAppsView.h"

#include "base/AnyChange.h"
#include "base/HostSystem.h"
#include "base/UnicodeText.h"

#include <algorithm>
#include <utility>

namespace vorli {

namespace {

using Group = StartupAppsSection::Group;

std::string counted(int count, std::string_view noun) {
  return std::to_string(count) + std::string(noun) + (count == 1 ? "" : "s");
}

bool matches(const StartupItem& item, std::string_view query) {
  const auto contains = [query](std::string_view text) { return lowercased(text).contains(query); };
  return contains(item.displayName) || contains(item.description) ||
         contains(item.installerName.value_or(std::string()));
}

Group groupOf(const StartupItem& item) {
  if (item.isLeftover) return Group::leftover;
  return item.footprint == StartupItem::Footprint::heavy ? Group::heavy : Group::rest;
}

std::string_view headingOf(Group group) {
  switch (group) {
    case Group::heavy:
      return "Worth a look";
    case Group::leftover:
      return "Leftover · safe to remove";
    case Group::rest:
      return "Light footprint · no action needed";
  }
  return {};
}

BulkBanner leftoverBanner(int count, std::function<void()> removeAll) {
  const auto what = counted(count, " leftover app");
  return {.kind = BulkBanner::Kind::leftover,
          .symbol = "trash",
          .title = what,
          .subtitle = "From software you've already removed. Safe to clean up.",
          .actions = {{.id = "remove-all",
                       .label = "Remove all",
                       .accessibilityLabel = "Remove all " + what,
                       .role = BulkBanner::Role::destructive,
                       .action = std::move(removeAll)}}};
}

BulkBanner updaterBanner(int count, std::function<void()> pauseAll) {
  const auto what = counted(count, " updater");
  return {.kind = BulkBanner::Kind::updater,
          .symbol = "arrow.triangle.2.circlepath",
          .title = what + " running",
          .subtitle = "Most apps update fine without these. You can turn them back on later.",
          .actions = {{.id = "pause-all",
                       .label = "Pause all",
                       .accessibilityLabel = "Pause all " + what,
                       .role = BulkBanner::Role::pauseAll,
                       .action = std::move(pauseAll)}}};
}

}  // namespace

std::string SearchField::countText() const {
  std::string text = counted(totalCount, " app");
  if (leftoverCount > 0) text += ", " + std::to_string(leftoverCount) + " leftover";
  return text;
}

StartupAppsView::StartupAppsView(const StartupAppsServices& services, HostSystem system)
    : scheduler_(services.scheduler),
      calendar_(services.calendar),
      defaults_(services.defaults),
      helperManager_(services.helperManager),
      service_(services.service),
      announcements_(services.announcements),
      system_(system),
      texts_(ofSystem<StartupAppsTexts>(system)),
      tasks_(services.scheduler) {}

void StartupAppsView::appear() {
  serviceSubscription_ = onAnyChange(
      scheduler_, [this] { serviceChanged(); }, service_.items, service_.hiddenSystemCount,
      service_.isScanning, service_.pendingUndo, service_.helperUnavailable, helperManager_.approvalObstacle);
  service_.refresh();
}

void StartupAppsView::disappear() {
  defaults_.setObject(StartupItemService::lastVisitKey, calendar_.now());
  serviceSubscription_.cancel();
  undoToast_.reset();
  helperToast_.reset();
  rows_.clear();
  searchQuery_.clear();
  nextAnimation_.reset();
}

StartupAppsView::Content StartupAppsView::content() const {
  if (!service_.items->empty()) return Content::list;
  return service_.isScanning ? Content::looking : Content::nothing;
}

StartupAppsNotice StartupAppsView::nothingNotice() const {
  return {"sparkles", "Nothing to tidy", texts_.nothing};
}

SearchField StartupAppsView::searchField() const {
  return {.query = searchQuery_,
          .totalCount = static_cast<int>(service_.items->size()),
          .leftoverCount = static_cast<int>(service_.leftoverItems().size())};
}

void StartupAppsView::setSearchQuery(std::string query) {
  searchQuery_ = std::move(query);
  contentChanged();
}

std::string StartupAppsView::trimmedQuery() const {
  return lowercased(trimmed(searchQuery_));
}

std::vector<StartupItem> StartupAppsView::matchingItems() const {
  std::vector<StartupItem> matching = service_.items;
  const auto query = trimmedQuery();
  if (!query.empty()) std::erase_if(matching, [&](const auto& item) { return !matches(item, query); });
  return matching;
}

std::vector<BulkBanner> StartupAppsView::banners() {
  std::vector<BulkBanner> banners;
  if (!trimmedQuery().empty()) return banners;
  const auto leftovers = static_cast<int>(service_.leftoverItems().size());
  const auto updaters = static_cast<int>(service_.updaterItems().size());
  auto& service = service_;
  if (leftovers > 0)
    banners.push_back(leftoverBanner(leftovers, [&service] { service.removeAllLeftovers(); }));
  if (updaters > 0) banners.push_back(updaterBanner(updaters, [&service] { service.pauseAllUpdaters(); }));
  return banners;
}

std::vector<StartupAppsSection> StartupAppsView::sections() const {
  std::vector<StartupAppsSection> sections;
  const auto matching = matchingItems();
  for (const auto group : {Group::heavy, Group::leftover, Group::rest}) {
    StartupAppsSection section;
    section.group = group;
    section.heading = headingOf(group);
    section.isFlaggedGroup = group == Group::heavy;
    std::ranges::copy_if(matching, std::back_inserter(section.items),
                         [group](const auto& item) { return groupOf(item) == group; });
    if (section.items.empty()) continue;
    section.showsSortHint = sections.empty();
    sections.push_back(std::move(section));
  }
  return sections;
}

std::optional<StartupAppsNotice> StartupAppsView::noMatches() const {
  if (trimmedQuery().empty() || !matchingItems().empty()) return std::nullopt;
  return StartupAppsNotice{"magnifyingglass", "No matches",
                           "Try a shorter search, or clear it to see everything."};
}

std::optional<std::string> StartupAppsView::footer() const {
  if (service_.hiddenSystemCount < 1) return std::nullopt;
  return "Vorli hides " + std::to_string(service_.hiddenSystemCount) + std::string(texts_.hiddenItems);
}

void StartupAppsView::serviceChanged() {
  std::erase_if(rows_, [this](const auto& row) {
    return std::ranges::find(service_.items.get(), row.first, &StartupItem::id) == service_.items->end();
  });
  updateToasts();
  contentChanged_.deliver(std::exchange(nextAnimation_, std::nullopt));
}

// A toast belongs to one action; the next action gets a new toast.
void StartupAppsView::updateToasts() {
  const auto& undo = service_.pendingUndo.get();
  if (undoToast_ && undo != undoToast_->action()) undoToast_.reset();
  if (!undoToast_ && undo)
    undoToast_ = std::make_unique<UndoToastView>(*undo, service_, scheduler_, announcements_);

  const auto& unavailable = service_.helperUnavailable.get();
  if (helperToast_ && unavailable != helperToast_->state()) helperToast_.reset();
  if (!helperToast_ && unavailable) {
    helperToast_ = std::make_unique<HelperUnavailableToast>(*unavailable, service_, helperManager_,
                                                            scheduler_, announcements_, texts_);
  }
}

void StartupAppsView::contentChanged(std::optional<Animation> animation) {
  contentChanged_.deliver(animation);
}

void StartupAppsView::helperToastPressed() {
  if (!helperToast_) return;
  const auto reason = helperToast_->state().reason;
  if (reason == HelperUnavailable::Reason::closedByHand) {
    service_.dismiss(helperToast_->state());
  } else if (reason == HelperUnavailable::Reason::notResponding) {
    tasks_.spawn(helperManager_.reinstallIfStale(Reinstall::forced));
  } else if (system_ == HostSystem::macOS) {
    helperManager_.askForStartupItemConsent();
  } else {
    // Repeats the action, which asks for the right password: the helper's, or that of the service manager.
    service_.askAgain();
  }
}

}  // namespace vorli

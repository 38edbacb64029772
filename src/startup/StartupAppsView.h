#pragma once

#include "base/Animation.h"
#include "base/HostSystem.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "ports/Announcements.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "startup/StartupAppRow.h"
#include "startup/StartupAppsTexts.h"
#include "startup/StartupItemService.h"
#include "startup/StartupToasts.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Dependencies of the list.
struct StartupAppsServices {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::KeyValueStore& defaults;
  HelperManager& helperManager;
  StartupItemService& service;
  ports::Announcements& announcements;
};

/// The search box and the count beside it.
struct SearchField {
  std::string query;
  int totalCount = 0;  // of the whole list, ignoring the query
  int leftoverCount = 0;

  std::string countText() const;

  static constexpr std::string_view placeholder = "Find an app…";
  static constexpr std::string_view accessibilityHint =
      "Filters the list by name, description, or installer.";
};

/// A summary above the list, with actions for all of its items.
struct BulkBanner {
  enum class Kind { leftover, updater };
  enum class Role { destructive, pauseAll };
  struct Action {
    std::string id;
    std::string_view label;
    std::string accessibilityLabel;
    Role role = Role::destructive;
    std::function<void()> action;
  };

  Kind kind = Kind::leftover;
  std::string_view symbol;
  std::string title;
  std::string_view subtitle;
  std::vector<Action> actions;
};

/// One section of the list and its card.
struct StartupAppsSection {
  enum class Group { heavy, leftover, rest };

  Group group = Group::rest;
  std::string_view heading;
  bool isFlaggedGroup = false;
  bool showsSortHint = false;  // at the end of the heading
  std::vector<StartupItem> items;

  static constexpr std::string_view sortHintSymbol = "arrow.down";
  static constexpr std::string_view sortHint = "HIGHEST USE FIRST";
};

/// Notice shown instead of an empty list.
struct StartupAppsNotice {
  std::string_view symbol;
  std::string_view heading;
  std::string_view text;

  bool operator==(const StartupAppsNotice&) const = default;
};

/// The list of startup items: what it shows and says, and what its controls do. Main thread.
class StartupAppsView {
 public:
  /// `looking`: a progress indicator with a text. `nothing`: a notice. `list`: search field, banners,
  /// sections and footer.
  enum class Content { looking, nothing, list };

  explicit StartupAppsView(const StartupAppsServices& services, HostSystem system = hostSystem);

  /// Starts a scan. Toasts appear again and restart their countdown.
  void appear();
  /// Ends the visit: items listed now are not new the next time. Discards open questions and the query.
  void disappear();

  /// Calls `handler` from the main loop after the content has changed, with the animation of the change, if
  /// any.
  using ContentHandler = std::function<void(const std::optional<Animation>&)>;
  [[nodiscard]] Subscription subscribeToContent(ContentHandler handler) {
    return contentChanged_.add(std::move(handler));
  }

  // The screen

  Content content() const;
  std::string_view lookingText() const { return texts_.looking; }
  StartupAppsNotice nothingNotice() const;
  SearchField searchField() const;
  void setSearchQuery(std::string query);
  std::vector<BulkBanner> banners();
  /// The sections that have items.
  std::vector<StartupAppsSection> sections() const;
  /// Notice shown instead of sections when no item matches the query.
  std::optional<StartupAppsNotice> noMatches() const;
  std::optional<std::string> footer() const;

  // Rows

  StartupAppRow row(const StartupItem& item) const { return {item, texts_}; }
  std::optional<RowConfirmation> pendingConfirmation(const StartupItem& item) const;
  std::optional<StartupCalloutView> callout(const StartupAppsSection& section, const StartupItem& item);
  /// Handles a press of a row's button. Asks first if the item requires a confirmation.
  void press(const StartupItem& item, RowVerb verb);
  void confirmationCancelled(const StartupItem& item);

  // Toasts; null while there is none

  UndoToastView* undoToast() const { return undoToast_.get(); }
  HelperUnavailableToast* helperToast() const { return helperToast_.get(); }
  void helperToastPressed();

 private:
  /// State of one row while the list is shown.
  struct RowState {
    std::optional<RowConfirmation> pendingConfirmation;
    bool isCalloutHidden = false;
  };

  std::string trimmedQuery() const;
  std::vector<StartupItem> matchingItems() const;
  void perform(const StartupItem& item, RowVerb verb);
  void hideCallout(const std::string& itemID, const std::optional<Animation>& animation);
  void serviceChanged();
  void updateToasts();
  void contentChanged(std::optional<Animation> animation = std::nullopt);

  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  ports::KeyValueStore& defaults_;
  HelperManager& helperManager_;
  StartupItemService& service_;
  ports::Announcements& announcements_;
  const HostSystem system_;
  const StartupAppsTexts& texts_;

  std::string searchQuery_;
  std::map<std::string, RowState> rows_;  // by item
  std::optional<Animation> nextAnimation_;
  std::unique_ptr<UndoToastView> undoToast_;
  std::unique_ptr<HelperUnavailableToast> helperToast_;
  SubscriberList<std::optional<Animation>> contentChanged_;
  Subscription serviceSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli

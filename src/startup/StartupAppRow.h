#pragma once

#include "base/Date.h"
#include "startup/StartupAppsTexts.h"
#include "startup/StartupItem.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Actions of a row's buttons.
enum class RowVerb { disable, enable, remove, quit };

struct RowButton {
  RowVerb verb = RowVerb::disable;
  std::string_view title;
  std::string_view toolTip;
  std::string accessibilityLabel;
  std::string accessibilityHint;
  std::string_view accessibilityValue = {};
  bool isActive = true;

  bool operator==(const RowButton&) const = default;
};

/// The question that a row asks before an action.
struct RowConfirmation {
  std::string id;
  std::string title;
  std::string_view message;
  std::string_view actionLabel;
  std::function<void()> action;

  static constexpr std::string_view cancelLabel = "Cancel";
};

enum class RowBadge { leftover, newItem, disabled };

struct CalloutButton {
  enum class Style { primary, secondary };

  std::string_view title;
  Style style = Style::primary;
  std::function<void()> action;
};

/// The advice under a heavy row.
struct StartupCalloutView {
  std::string_view heading;
  std::string body;
  std::array<CalloutButton, 2> buttons;
};

/// One row of the list: everything about an item that is shown or read by a screen reader.
class StartupAppRow {
 public:
  /// `item` and `texts` must outlive the row.
  StartupAppRow(const StartupItem& item, const StartupAppsTexts& texts) : item_(item), texts_(texts) {}

  double opacity() const { return item_.isEnabled ? 1.0 : 0.62; }
  std::vector<RowBadge> badges() const;
  /// The second line; the view truncates it if it is too long.
  std::string metaLine(Date now) const;
  std::string accessibilityLabel(Date now) const;
  std::vector<RowButton> buttons() const;

  std::string_view calloutHeading() const;
  std::string calloutBody() const;

  /// "Disable NAME?" and so on, for an item that asks first.
  std::string confirmationTitle(RowVerb verb) const;
  static constexpr std::string_view confirmationMessage =
      "This app might be doing something important. You can turn it back on any time.";

 private:
  RowButton mainButton() const;
  RowButton disableButton() const;
  RowButton quitButton() const;

  const StartupItem& item_;
  const StartupAppsTexts& texts_;
};

/// "LEFTOVER", "NEW" or "DISABLED".
std::string_view badgeText(RowBadge badge);
/// "Disable" and so on.
std::string_view verbText(RowVerb verb);

}  // namespace vorli

#pragma once

#include "base/Date.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// One startup item, as the list shows it. File URLs are kept as absolute paths.
struct StartupItem {
  /// Current cost of the item. The declared order is the sort order.
  enum class Footprint { light, medium, heavy };
  enum class Timing { startsWithMac, onDemand, runningNow };
  /// Origin of the item.
  enum class Source { autoInstalled, userLinked };

  std::string id;
  std::optional<std::string> bundleID;  // identifier of the application; equal to `id` when none was found
  std::string displayName;
  std::string description;
  std::optional<std::string> appURL;
  /// Path of the file while the item is enabled, even if the file has another name now. Empty for an item
  /// without a file of its own.
  std::optional<std::string> plistURL;
  bool isEnabled = true;
  Footprint footprint = Footprint::light;
  bool isRunning = false;
  double cpuPercent = 0.0;  // of one core
  double memoryMB = 0.0;    // mebibytes
  /// True when the program may move the file itself, without the helper.
  bool isUserWritable = false;
  Timing timing = Timing::onDemand;
  Source source = Source::autoInstalled;
  std::optional<Date> firstSeenAt;  // when the file was created
  bool isLeftover = false;          // the program that it starts does not exist
  bool isNewSinceLastVisit = false;
  std::optional<std::string> installerName;
  /// Identifier of the running application or user service that is asked to quit.
  std::optional<std::string> runningAppBundleID;
  bool requiresConfirmation = false;  // before it is paused, removed or quit

  bool operator==(const StartupItem&) const = default;
};

/// "light", "medium" or "heavy".
std::string_view rawValue(StartupItem::Footprint footprint);

/// Age of the item's file, such as "3 months old". Empty without a date, and for a date that is not in the
/// past.
std::optional<std::string> ageText(const StartupItem& item, Date now);

/// Origin of the item, such as "Hidden install, 3 months old, by Acme".
std::string originLine(const StartupItem& item, Date now);

/// The item's current cost, in a few words.
std::string_view statusWord(const StartupItem& item);

}  // namespace vorli

template <>
struct std::hash<vorli::StartupItem> {
  std::size_t operator()(const vorli::StartupItem& item) const noexcept;
};

#include "startup/StartupItem.h"

#include <algorithm>
#include <cstdint>

namespace vorli {

namespace {

constexpr double secondsPerDay = 86400.0;
constexpr double mostDays = 1e9;  // keeps absurd dates within the integer's range

std::string daysText(std::int64_t days) {
  if (days < 1) return "added today";
  if (days == 1) return "1 day old";
  if (days < 30) return std::to_string(days) + " days old";
  if (days < 60) return "1 month old";
  if (days < 360) return std::to_string(days / 30) + " months old";
  // 360 to 364 days are twelve months but not yet a year: they give "0 years old".
  const auto years = days / 365;
  return years == 1 ? "1 year old" : std::to_string(years) + " years old";
}

}  // namespace

std::string_view rawValue(StartupItem::Footprint footprint) {
  switch (footprint) {
    case StartupItem::Footprint::light:
      return "light";
    case StartupItem::Footprint::medium:
      return "medium";
    case StartupItem::Footprint::heavy:
      return "heavy";
  }
  return {};
}

std::optional<std::string> ageText(const StartupItem& item, Date now) {
  if (!item.firstSeenAt) return std::nullopt;
  const double age = now - *item.firstSeenAt;
  if (!(age > 0.0)) return std::nullopt;
  return daysText(static_cast<std::int64_t>(std::min(age / secondsPerDay, mostDays)));
}

std::string originLine(const StartupItem& item, Date now) {
  std::string line = item.source == StartupItem::Source::userLinked ? "You installed this" : "Hidden install";
  if (const auto age = ageText(item, now)) line += ", " + *age;
  const auto& installer = item.installerName;
  if (installer && !installer->empty() && *installer != "you") line += ", by " + *installer;
  return line;
}

std::string_view statusWord(const StartupItem& item) {
  if (!item.isEnabled) return "Disabled";
  switch (item.footprint) {
    case StartupItem::Footprint::heavy:
      return "Using a lot of power";
    case StartupItem::Footprint::medium:
      return "Using some power";
    case StartupItem::Footprint::light:
      break;
  }
  return item.isRunning ? "Small and quiet" : "Idle";
}

}  // namespace vorli

namespace {

template <typename T>
std::size_t hashOf(const T& value) {
  return std::hash<T>()(value);
}
std::size_t hashOf(const std::optional<vorli::Date>& date) {
  return date ? hashOf(date->secondsSince1970) : 1;
}

template <typename... Fields>
std::size_t combinedHash(const Fields&... fields) {
  std::size_t seed = 0;
  ((seed ^= hashOf(fields) + 0x9E3779B97F4A7C15u + (seed << 6) + (seed >> 2)), ...);
  return seed;
}

}  // namespace

std::size_t std::hash<vorli::StartupItem>::operator()(const vorli::StartupItem& item) const noexcept {
  return combinedHash(item.id, item.bundleID, item.displayName, item.description, item.appURL, item.plistURL,
                      item.isEnabled, item.footprint, item.isRunning, item.cpuPercent, item.memoryMB,
                      item.isUserWritable, item.timing, item.source, item.firstSeenAt, item.isLeftover,
                      item.isNewSinceLastVisit, item.installerName, item.runningAppBundleID,
                      item.requiresConfirmation);
}

#include "settings/AppSettings.h"

#include <utility>

namespace vorli {
namespace {

constexpr const char* lastAutoRefreshKey = "lastAutoRefresh";

}  // namespace

std::optional<Date> AppSettings::lastAutoRefresh() const {
  return dateForKey(defaults_, lastAutoRefreshKey);
}

void AppSettings::setLastAutoRefresh(std::optional<Date> value) {
  std::optional<StoredValue> stored;
  if (value) stored = *value;
  defaults_.setObject(lastAutoRefreshKey, std::move(stored));
}

}  // namespace vorli

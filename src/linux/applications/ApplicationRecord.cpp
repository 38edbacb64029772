#include "linux/applications/ApplicationRecord.h"

#include "base/UTF8.h"

namespace vorli::linuxhost {

ports::RunningApplication recordOf(const formats::DesktopEntry& entry) {
  return {.localizedName = SharedText(entry.name),
          .bundleIdentifier = SharedText(entry.id),
          .bundleURL = SharedText(repairedUTF8(entry.path)),
          .icon = {SharedText(entry.icon)}};
}

std::optional<ports::RunningApplication> recordOf(const std::vector<DesktopWindow>& windows) {
  for (const auto& window : windows) {
    const auto& name = window.wmClass.empty() ? window.wmInstance : window.wmClass;
    if (!window.isNormal || name.empty()) continue;
    return ports::RunningApplication{.localizedName = SharedText(repairedUTF8(name))};
  }
  return std::nullopt;
}

}  // namespace vorli::linuxhost

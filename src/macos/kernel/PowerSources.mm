#include "macos/kernel/PowerSources.h"

#include "macos/Text.h"

#include <IOKit/ps/IOPowerSources.h>

namespace vorli::machost {

std::optional<std::string> PowerSources::providingSourceType() {
  const CFTypeRef sources = IOPSCopyPowerSourcesInfo();
  if (!sources) return std::nullopt;
  // The name belongs to the record, so it is copied before the record is released.
  auto name = textIn((__bridge NSString*)IOPSGetProvidingPowerSourceType(sources));
  CFRelease(sources);
  return name;
}

}  // namespace vorli::machost

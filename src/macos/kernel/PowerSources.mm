#include "macos/kernel/PowerSources.h"

#include "macos/Text.h"

#include <IOKit/ps/IOPowerSources.h>
#include <optional>
#include <string_view>

namespace vorli::machost {

namespace {

using Kind = ports::PowerSupply::Kind;

std::optional<Kind> kindOf(std::string_view name) {
  if (name == "AC Power") return Kind::line;
  if (name == "UPS Power") return Kind::uninterruptible;
  if (name == "Battery Power") return Kind::battery;
  return std::nullopt;
}

}  // namespace

std::span<const ports::PowerSupply> PowerSources::readSupplies() {
  const CFTypeRef sources = IOPSCopyPowerSourcesInfo();
  if (!sources) return {};
  // The name belongs to the record, so it is read before the record is released.
  const auto kind = kindOf(textOf((__bridge NSString*)IOPSGetProvidingPowerSourceType(sources)));
  CFRelease(sources);
  if (!kind) return {};
  supply_ = {.kind = *kind, .state = ports::PowerSupply::State::supplying};
  return {&supply_, 1};
}

}  // namespace vorli::machost

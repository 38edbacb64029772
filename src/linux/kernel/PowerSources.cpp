#include "linux/kernel/PowerSources.h"

#include "base/Blanks.h"
#include "linux/kernel/DeviceFolder.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace vorli::linuxhost {

namespace {

using Kind = ports::PowerSupply::Kind;
using State = ports::PowerSupply::State;

std::optional<Kind> kindOf(const std::string& supply) {
  if (readAttribute(supply + "/scope") == "Device") return std::nullopt;
  const auto type = readAttribute(supply + "/type").value_or("");
  if (type == "Mains" || type == "Wireless" || type.starts_with("USB")) return Kind::line;
  if (type == "Battery") return Kind::battery;
  if (type == "UPS") return Kind::uninterruptible;
  return std::nullopt;
}

State lineState(std::string_view online) {
  if (online == "1" || online == "2") return State::supplying;  // 2: with a programmable voltage
  return online == "0" ? State::idle : State::unknown;
}

State batteryState(std::string_view status) {
  if (status == "Discharging") return State::supplying;
  if (status == "Charging") return State::charging;
  return status == "Full" || status == "Not charging" ? State::idle : State::unknown;
}

}  // namespace

PowerSources::PowerSources(const std::string& root) : folder_(root + "/sys/class/power_supply") {}

std::span<const ports::PowerSupply> PowerSources::readSupplies() {
  if (readingsUntilLook_ == 0) {
    lookForSupplies();
    readingsUntilLook_ = readingsBetweenLooks;
  }
  --readingsUntilLook_;

  reading_.clear();
  std::array<char, longestAttribute> buffer;
  for (auto& supply : supplies_) {
    const auto text = withoutBlanks(supply.state.read(buffer).value_or(""));
    const auto state = supply.kind == Kind::line ? lineState(text) : batteryState(text);
    reading_.push_back({supply.kind, state});
    // Leaves the rest unread: the state of a battery comes from a slow controller.
    if (state == State::supplying) break;
  }
  return reading_;
}

void PowerSources::lookForSupplies() {
  supplies_.clear();
  for (const auto& name : deviceNames(folder_)) {
    const auto supply = folder_ + "/" + name;
    if (const auto kind = kindOf(supply)) {
      supplies_.push_back({*kind, KeptFile(supply + (*kind == Kind::line ? "/online" : "/status"))});
    }
  }
  std::ranges::sort(supplies_, {}, &Supply::kind);
}

}  // namespace vorli::linuxhost

#include "linux/kernel/PowerSources.h"

#include "formats/KernelText.h"
#include "linux/kernel/DeviceFolder.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <array>

namespace vorli::linuxhost {

PowerSources::PowerSources(const std::string& root) : folder_(root + "/sys/class/power_supply") {}

std::optional<std::string> PowerSources::providingSourceType() {
  if (readingsUntilLook_ == 0) {
    lookForSupplies();
    readingsUntilLook_ = readingsBetweenLooks;
  }
  --readingsUntilLook_;

  // Checks the mains first: the state of a battery comes from a slow controller.
  if (any(Kind::line, {"1", "2"})) return "AC Power";  // 2: online, with a programmable voltage
  if (any(Kind::uninterruptible, {"Discharging"})) return "UPS Power";
  if (any(Kind::battery, {"Discharging"})) return "Battery Power";
  if (any(Kind::battery, {"Charging"})) return "AC Power";
  // When the mains are off, the battery powers the machine, whatever its controller still reports.
  if (any(Kind::battery) && any(Kind::line)) return "Battery Power";
  // Idle supplies, on a machine that does not report its mains.
  if (any(Kind::battery, {"Full", "Not charging"})) return "AC Power";
  if (any(Kind::uninterruptible, {"Charging", "Full", "Not charging"})) return "AC Power";
  return std::nullopt;
}

std::optional<PowerSources::Kind> PowerSources::kindOf(const std::string& supply) {
  if (readAttribute(supply + "/scope") == "Device") return std::nullopt;
  const auto type = readAttribute(supply + "/type").value_or("");
  if (type == "Mains" || type == "Wireless" || type.starts_with("USB")) return Kind::line;
  if (type == "Battery") return Kind::battery;
  if (type == "UPS") return Kind::uninterruptible;
  return std::nullopt;
}

void PowerSources::lookForSupplies() {
  supplies_.clear();
  for (const auto& name : deviceNames(folder_)) {
    const auto supply = folder_ + "/" + name;
    if (const auto kind = kindOf(supply)) {
      supplies_.push_back({*kind, KeptFile(supply + (*kind == Kind::line ? "/online" : "/status"))});
    }
  }
}

bool PowerSources::any(Kind kind) const {
  return std::ranges::any_of(supplies_, [kind](const Supply& supply) { return supply.kind == kind; });
}

bool PowerSources::any(Kind kind, std::initializer_list<std::string_view> states) {
  std::array<char, longestAttribute> buffer;
  return std::ranges::any_of(supplies_, [&](Supply& supply) {
    if (supply.kind != kind) return false;
    const auto state = formats::trimmed(supply.state.read(buffer).value_or(""));
    return std::ranges::find(states, state) != states.end();
  });
}

}  // namespace vorli::linuxhost

#pragma once

#include "ports/SystemDescription.h"

#include <string>
#include <string_view>
#include <utility>

namespace vorli::linuxhost {

/// The distribution's pretty name, the kernel's release, and the machine's product name from the firmware, or
/// the processor's model when the firmware has none.
class SystemDescription final : public ports::SystemDescription {
 public:
  /// `root` is the prefix of every path.
  explicit SystemDescription(std::string root = {}) : root_(std::move(root)) {}

  ports::SystemVersion systemVersion() override;
  std::optional<std::string> hardwareModel() override;

 private:
  const std::string root_;
};

/// Returns PRETTY_NAME of an os-release file, without its quotes. Empty when there is none.
std::string prettyName(std::string_view osRelease);

/// Returns the firmware's product name. Empty for the placeholders of makers that set no name.
std::optional<std::string> productName(std::string_view text);

/// Returns the first "model name" of /proc/cpuinfo.
std::optional<std::string> processorModel(std::string_view cpuInfo);

}  // namespace vorli::linuxhost

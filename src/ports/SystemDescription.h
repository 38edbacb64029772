#pragma once

#include <optional>
#include <string>

namespace vorli::ports {

/// The running system's version.
struct SystemVersion {
  std::string name;     // the distribution with its version; empty where `release` suffices
  std::string release;  // such as "14.4.1", or the kernel's release
};

/// The machine's model and the system's version. Main thread; blocks while one or two small kernel files are
/// read.
class SystemDescription {
 public:
  virtual ~SystemDescription() = default;

  virtual SystemVersion systemVersion() = 0;

  /// The machine's model; empty when it is unknown.
  virtual std::optional<std::string> hardwareModel() = 0;
};

}  // namespace vorli::ports

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ports {

/// One row of the process list.
struct ProcessUse {
  std::int32_t processIdentifier = 0;
  double cpuPercent = 0.0;  // of one core
  double residentKibibytes = 0.0;

  bool operator==(const ProcessUse&) const = default;
};

/// Combined usage of all processes of one service.
struct ServiceUse {
  std::string name;
  double cpuPercent = 0.0;  // of one core
  double memoryMB = 0.0;    // mebibytes
  bool isUsers = false;     // run by the user's own service manager, so the user may stop it

  bool operator==(const ServiceUse&) const = default;
};

/// Current resource usage of the processes. Any thread, one at a time; a call blocks while all processes are
/// read, some ten milliseconds for a thousand of them.
class ProcessUsage {
 public:
  virtual ~ProcessUsage() = default;

  /// Prepares a reading of the present: returns after how many seconds it should be made. 0 when it may be
  /// made at once, because the system keeps recent shares or the last reading is recent.
  virtual double prepareReading() = 0;

  /// One row for each process; all numbers are finite. Empty optional when the processes cannot be listed.
  virtual std::optional<std::vector<ProcessUse>> processes() = 0;

  /// The running services that are not applications. Empty where the system does not account for services.
  virtual std::vector<ServiceUse> services() = 0;
};

}  // namespace vorli::ports

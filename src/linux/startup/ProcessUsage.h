#pragma once

#include "ports/ProcessUsage.h"
#include "posix/FileDescriptor.h"

#include <map>
#include <string>
#include <utility>

namespace vorli::linuxhost {

/// The processes of /proc and the control groups of services. The processor share is measured since the last
/// reading or preparation that is a second old; without one, over the whole life of the process or group.
class ProcessUsage final : public ports::ProcessUsage {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit ProcessUsage(std::string root = "");

  /// Makes a reading of its own if the last one is older than half a minute.
  double prepareReading() override;
  std::optional<std::vector<ports::ProcessUse>> processes() override;
  /// The services of the system and of this user; their identifiers are the names of their units.
  std::vector<ports::ServiceUse> services() override;

 private:
  struct Reading {
    double started = 0.0;      // seconds since boot
    double busySeconds = 0.0;  // on all processors
  };
  struct Look {
    double at = 0.0;  // seconds since boot
    std::map<std::string, Reading> readings;
  };
  /// The last look, and the one before it for as long as the last is too recent to measure a share since.
  struct Looks {
    const Look& before(double now) const;
    void add(Look look);

    Look earlier, last;
  };

  double secondsSinceBoot() const;
  std::optional<ports::ProcessUse> readProcess(const std::string& pid, Look& look) const;
  void addServices(const std::string& folder, int depth, Look& look,
                   std::vector<ports::ServiceUse>& services) const;
  std::optional<ports::ServiceUse> readService(const std::string& folder, const std::string& name,
                                               Look& look) const;
  static double percentSince(const Look& last, const Look& now, const std::string& key,
                             const Reading& reading);

  const std::string root_;
  const double ticksPerSecond_;
  const double pageKibibytes_;
  Looks processLooks_;
  Looks serviceLooks_;
};

}  // namespace vorli::linuxhost

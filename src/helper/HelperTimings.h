#pragma once

namespace vorli {

/// Every duration of the daemon's client, in seconds.
struct HelperTimings {
  // How long a caller waits for the daemon.
  static constexpr double ping = 2.0;
  static constexpr double version = 2.0;
  static constexpr double purgeMemory = 20.0;
  static constexpr double flushDNS = 5.0;
  static constexpr double killPID = 10.0;
  static constexpr double moveLaunchAgentPlist = 4.0;

  // How long a flow waits for the registration service's own answers.
  static constexpr double freshStatus = 0.5;
  static constexpr double firstStatus = 10.0;  // by a repair that nobody waits for
  static constexpr double consent = 2.0;

  // Time allowed for the system to notice a changed registration.
  static constexpr double registrationSettles = 0.4;
  // Pause between the two attempts at launch.
  static constexpr double launchRetry = 3.0;
};

}  // namespace vorli

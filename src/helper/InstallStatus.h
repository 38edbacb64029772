#pragma once

#include <string>

namespace vorli {

/// What the system says of the daemon's registration.
class InstallStatus {
 public:
  enum class Case { unknown, notRegistered, requiresApproval, enabled, notFound };

  constexpr InstallStatus(Case which) : case_(which) {}
  static constexpr InstallStatus unknown(int payload) { return InstallStatus(Case::unknown, payload); }
  /// 0 to 3 are known; any other number is kept as the payload of `unknown`.
  static InstallStatus fromRawValue(int rawValue);

  Case which() const { return case_; }
  std::string description() const;

  bool operator==(const InstallStatus&) const = default;

 private:
  constexpr InstallStatus(Case which, int payload) : case_(which), payload_(payload) {}

  Case case_;
  int payload_ = 0;
};

}  // namespace vorli

#pragma once

#include "base/HostSystem.h"
#include "helper/HelperTexts.h"

#include <string>

namespace vorli {

/// State of the daemon's registration, as the system reports it.
class InstallStatus {
 public:
  enum class Case { unknown, notRegistered, requiresApproval, enabled, notFound };

  constexpr InstallStatus(Case which) : case_(which) {}
  static constexpr InstallStatus unknown(int payload) { return InstallStatus(Case::unknown, payload); }
  /// Maps 0 to 3 to the known cases; any other number becomes the payload of `unknown`.
  static InstallStatus fromRawValue(int rawValue);

  Case which() const { return case_; }
  std::string description(const HelperTexts& texts = ofThisSystem<HelperTexts>()) const;

  bool operator==(const InstallStatus&) const = default;

 private:
  constexpr InstallStatus(Case which, int payload) : case_(which), payload_(payload) {}

  Case case_;
  int payload_ = 0;
};

}  // namespace vorli

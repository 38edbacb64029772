#include "helper/InstallStatus.h"

namespace vorli {

InstallStatus InstallStatus::fromRawValue(int rawValue) {
  switch (rawValue) {
    case 0:
      return Case::notRegistered;
    case 1:
      return Case::enabled;
    case 2:
      return Case::requiresApproval;
    case 3:
      return Case::notFound;
    default:
      return unknown(rawValue);
  }
}

std::string InstallStatus::description(const HelperTexts& texts) const {
  switch (case_) {
    case Case::unknown:
      return "Unknown (" + std::to_string(payload_) + ")";
    case Case::notRegistered:
      return "Not registered";
    case Case::requiresApproval:
      return std::string(texts.requiresApproval);
    case Case::enabled:
      return "Enabled";
    case Case::notFound:
      return "Not found";
  }
  return {};
}

}  // namespace vorli

#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// Addresses of the product, which are configuration of the build.
struct ProductAddresses {
  std::string feedback;   // page in the browser
  std::string makerSite;  // page in the browser
  std::string support{};  // mailbox for crash reports
  std::string install{};  // page in the browser

  /// False for an empty address and for the placeholder of a build that is not configured; such an address is
  /// not offered.
  static bool isSet(std::string_view address) {
    return !address.empty() && address.find("REPLACE_WITH") == std::string_view::npos;
  }
};

}  // namespace vorli

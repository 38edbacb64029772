#pragma once

#include "ports/StartupFiles.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Reads the system's store of the background items of one user.
class BTMFileParser {
 public:
  /// Path that is appended to the home folder.
  static constexpr std::string_view pathInHome =
      "/Library/Application Support/com.apple.backgroundtaskmanagementagent/backgrounditems.btm";

  using UUID = std::array<std::uint8_t, 16>;

  /// One application and the helpers inside it. Has at least one URL.
  struct Container {
    std::optional<UUID> identifier = {};
    std::optional<std::string> appURL = {};
    bool isEnabled = true;
    std::vector<std::string> internalURLs = {};

    bool operator==(const Container&) const = default;
  };

  /// Returns the containers of a store; empty if it is missing, damaged or of another format. Damaged parts
  /// are skipped. URLs are absolute paths of existing files. Blocks to read the file and to check each path.
  static std::vector<Container> parse(ports::StartupFiles& files, const std::string& url);
};

}  // namespace vorli

#pragma once

#include <string>
#include <vector>

namespace vorli::macfake {

/// Lines of the system's log: "subsystem/category type: text". A text without `public` is "<private>".
struct Log {
  std::vector<std::string> lines;
  bool isEnabled = true;
};

Log& log();

}  // namespace vorli::macfake

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vorli::bench {

/// The least that a scan of the startup items can cost: listing their folders once, and opening, reading and
/// closing each of their files once without using what was read.
class StartupFloor {
 public:
  /// Folders and the folders directly below them; those that do not exist are left out.
  explicit StartupFloor(const std::vector<std::string>& folders);

  /// Returns the number of files.
  std::size_t pass() const;

 private:
  std::vector<std::string> folders_;
};

}  // namespace vorli::bench

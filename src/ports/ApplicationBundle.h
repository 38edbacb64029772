#pragma once

#include <optional>
#include <string>

namespace vorli::ports {

/// The program's own installation. Main thread; does not block.
class ApplicationBundle {
 public:
  virtual ~ApplicationBundle() = default;

  /// A text of the program's information dictionary ("CFBundleIdentifier", "CFBundleVersion",
  /// "CFBundleShortVersionString"). Empty when it is missing or not a text.
  virtual std::optional<std::string> infoString(const std::string& key) const = 0;

  /// Absolute path of the installed program: the bundle, or the executable where there are no bundles.
  virtual std::string bundlePath() const = 0;

  /// The user's home folder, without a trailing slash.
  virtual std::string homeDirectory() const = 0;
};

}  // namespace vorli::ports

#pragma once

#include <optional>
#include <string>

namespace vorli::ports {

/// The icons of installed applications, as image files of the system.
class ApplicationIcons {
 public:
  virtual ~ApplicationIcons() = default;

  /// Notices that the user has chosen other icons since the last call. Main thread; does not block.
  virtual void lookAgain() = 0;

  /// Returns the bytes of the PNG image that best fits a square of `sidePixels`, for the application at an
  /// absolute path. They are not checked: the file may be damaged, or hold a picture of any size. Empty when
  /// the application has no such image. Any thread; blocks for a few hundred short disk accesses.
  virtual std::optional<std::string> image(const std::string& application, int sidePixels) = 0;
};

}  // namespace vorli::ports

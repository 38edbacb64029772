#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorli::ports {

/// Values from an application's bundle. A value that is missing or not a text is empty.
struct BundleInfo {
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> bundleDisplayName;  // "CFBundleDisplayName"
  std::optional<std::string> bundleName;         // "CFBundleName"
};

/// The applications that are installed, running or not. Any thread, one at a time; a call blocks for a short
/// disk access.
class InstalledApplications {
 public:
  virtual ~InstalledApplications() = default;

  /// Notices what was installed or removed since the last call. Until the next call, the other functions may
  /// answer from what this one found, so that many calls in a row stay cheap.
  virtual void lookAgain() = 0;

  /// Absolute path of the application with this identifier, compared by the system's rules; empty when there
  /// is none.
  virtual std::optional<std::string> urlForApplication(std::string_view bundleIdentifier) = 0;

  /// Absolute path of the only application that this program file starts. Empty when there is none or several
  /// do, and where the bundle around a program identifies its application.
  virtual std::optional<std::string> urlForProgram(const std::string& path) = 0;

  /// Values from the bundle at an absolute path: any folder or, where applications are not bundles, the file
  /// that describes an application. Empty when there is neither.
  virtual std::optional<BundleInfo> bundle(const std::string& path) = 0;
};

}  // namespace vorli::ports

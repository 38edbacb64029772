#pragma once

#include <expected>
#include <string>

namespace vorli::ports {

/// The system's setting that starts this program when the user logs in. Main thread; reads and writes a few
/// small files at most.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found.
  virtual int status() = 0;

  /// Error: the system's text. Registering an item twice succeeds, and so does unregistering one that is not
  /// registered.
  [[nodiscard]] virtual std::expected<void, std::string> registerItem() = 0;
  [[nodiscard]] virtual std::expected<void, std::string> unregisterItem() = 0;
};

}  // namespace vorli::ports

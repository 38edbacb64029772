#pragma once

namespace vorli::ports {

/// The system's settings page for startup items.
class StartupSettings {
 public:
  virtual ~StartupSettings() = default;

  /// Shows the page at the user's request; does nothing where the system has none. Main thread; does not
  /// block.
  virtual void open() = 0;
};

}  // namespace vorli::ports

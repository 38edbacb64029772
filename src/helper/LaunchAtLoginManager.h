#pragma once

#include "ports/LoginItem.h"
#include "settings/AppSettings.h"

namespace vorli {

enum class LoginItemWish { off, on };

/// Keeps the system's login item for this program in step with the setting, which wins. Main thread.
class LaunchAtLoginManager {
 public:
  LaunchAtLoginManager(const AppSettings& settings, ports::LoginItem& item)
      : settings_(settings), item_(item) {}

  /// Call once at launch: reverts changes made outside the program or by an older version of it.
  void syncFromSettings();

  /// Updates the login item. A failure is logged; the next launch tries again.
  void apply(LoginItemWish wish);

 private:
  const AppSettings& settings_;
  ports::LoginItem& item_;
};

}  // namespace vorli

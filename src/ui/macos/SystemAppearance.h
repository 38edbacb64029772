#pragma once

#include "base/Subscription.h"

#include <functional>

namespace vorli::ui {

/// True while the program's windows and its place in the menu bar are dark. Main thread.
bool isSystemDark();

/// Calls `handler` when the user, or the time of day, may have changed it.
[[nodiscard]] Subscription subscribeToSystemAppearance(std::function<void()> handler);

}  // namespace vorli::ui

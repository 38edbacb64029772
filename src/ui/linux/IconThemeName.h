#pragma once

#include "ui/linux/GtkPreference.h"
#include "ui/linux/ManagerSelections.h"

#include <string>

namespace vorli::ui {

/// Returns the name of the icon theme in the settings that the desktop publishes to X11 programs, else in the
/// user's own file; empty when neither names one. Main thread; may read one small file.
std::string iconThemeName(const ManagerSelections& selections);

}  // namespace vorli::ui

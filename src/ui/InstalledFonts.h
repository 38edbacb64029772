#pragma once

namespace vorli::ui {

/// Makes the faces that were installed with the program known to Qt, once; without them the system's
/// substitutes are taken. Main thread; reads half a megabyte the first time.
void loadInstalledFonts();

}  // namespace vorli::ui

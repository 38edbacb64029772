#pragma once

namespace vorli::ui {

/// Registers the fonts that were installed with the program in Qt, once. Without them, the system's
/// substitutes are used. Main thread; the first call reads half a megabyte.
void loadInstalledFonts();

}  // namespace vorli::ui

#pragma once

namespace vorli::ui {

/// Opens the desktop's software centre on its list of updates, without waiting for it. Returns false when
/// none is installed.
bool openSoftwareCentreOnUpdates();

}  // namespace vorli::ui

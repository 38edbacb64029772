#pragma once

#include <QRect>
#include <cstdint>
#include <optional>

namespace vorli::ui {

// Queries to the X server that Qt does not offer, over Qt's own connection. They block for a few round trips.
// Without an X server the results are empty.

/// Returns the geometry of the screen that the user works on, in Qt's logical pixels: the one of the focused
/// window, else the primary one. Empty when there is no screen.
std::optional<QRect> mainScreenGeometry();

/// Returns the window, or the frame that the window manager put around it: whichever is a child of the root.
/// 0 for 0 and for a window that does not exist.
std::uint32_t topLevelAncestor(std::uint32_t window);

}  // namespace vorli::ui

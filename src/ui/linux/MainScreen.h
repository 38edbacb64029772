#pragma once

#include <QRect>
#include <cstdint>
#include <optional>

namespace vorli::ui {

// Questions to the X server that Qt does not answer, over Qt's own connection: one or two round trips each.
// Without an X server the answers are empty.

/// The screen that the user works on, in Qt's logical pixels: that of the window with the keyboard, else the
/// primary one. Empty when there is no screen.
std::optional<QRect> mainScreenGeometry();

/// The window, or what the window manager put around it: the one that stands among the root's children. 0 for
/// 0, and when it is gone.
std::uint32_t topLevelAncestor(std::uint32_t window);

}  // namespace vorli::ui

#pragma once

#include "ui/WindowPalette.h"

#include <QImage>

namespace vorli::ui {

/// The program's mark: the status item's dial, all ticks lit, on a rounded square with a star in its middle.
/// Square, on a clear ground, premultiplied; the margin on every side is room for its soft shadow, which is
/// cut off where it ends. Any thread.
QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette);

}  // namespace vorli::ui

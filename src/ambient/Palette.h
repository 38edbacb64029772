#pragma once

#include "base/Colour.h"

/// The colours that are used in several places; each part of the program names them by purpose. A colour of
/// one place is defined there.
namespace vorli::palette {

inline constexpr Colour white{1.0, 1.0, 1.0, 1.0};
inline constexpr Colour black{0.0, 0.0, 0.0, 1.0};
inline constexpr Colour teal{0.494, 0.82, 0.804};  // the low end
inline constexpr Colour calm{0.423, 0.659, 0.643};
inline constexpr Colour green{0.369, 0.796, 0.533};
inline constexpr Colour yellow{0.949, 0.769, 0.165};
inline constexpr Colour orange{0.945, 0.525, 0.125};
inline constexpr Colour red{0.902, 0.235, 0.157};
inline constexpr Colour deepRed{0.78, 0.247, 0.196};  // the high end
inline constexpr Colour calmForLight{0.239, 0.463, 0.447};
inline constexpr Colour paleGreenWhite{0.749, 0.878, 0.8};
inline constexpr Colour ink{0.102, 0.102, 0.11};
inline constexpr Colour secondaryInk{0.29, 0.29, 0.306};
inline constexpr Colour mutedInkForDark{0.627, 0.62, 0.604};
inline constexpr Colour amber{0.894, 0.643, 0.345};
inline constexpr Colour softRed{0.894, 0.392, 0.329};
inline constexpr Colour gold{0.71, 0.494, 0.212};
inline constexpr Colour apricot{0.949, 0.706, 0.369};
inline constexpr Colour tangerine{0.878, 0.541, 0.173};
inline constexpr Colour porcelain{1.0, 0.996, 0.984};
inline constexpr Colour ivory{1.0, 0.992, 0.969};
inline constexpr Colour chalk{0.945, 0.937, 0.914};
inline constexpr Colour ash{0.776, 0.765, 0.737};
inline constexpr Colour brown{0.549, 0.431, 0.275};
inline constexpr Colour umber{0.275, 0.204, 0.098};
inline constexpr Colour bistre{0.235, 0.176, 0.078};

}  // namespace vorli::palette

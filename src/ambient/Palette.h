#pragma once

#include "base/Colour.h"

namespace vorli::palette {

inline constexpr Colour teal{0.494, 0.82, 0.804};  // the low end
inline constexpr Colour calm{0.423, 0.659, 0.643};
inline constexpr Colour green{0.369, 0.796, 0.533};
inline constexpr Colour yellow{0.949, 0.769, 0.165};
inline constexpr Colour orange{0.945, 0.525, 0.125};
inline constexpr Colour red{0.902, 0.235, 0.157};
inline constexpr Colour deepRed{0.78, 0.247, 0.196};  // the high end

}  // namespace vorli::palette

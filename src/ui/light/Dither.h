#pragma once

#include <array>
#include <cstdint>

namespace vorli::ui {

/// Ordered dither pattern of 8 x 8 with each value from 0 to 63 once. A component is rounded up instead of
/// down where its fraction, in 64ths, and the pattern together reach 64: the share of these pixels is the
/// fraction.
inline constexpr std::array<std::array<std::uint8_t, 8>, 8> ditherPattern{{{0, 32, 8, 40, 2, 34, 10, 42},
                                                                           {48, 16, 56, 24, 50, 18, 58, 26},
                                                                           {12, 44, 4, 36, 14, 46, 6, 38},
                                                                           {60, 28, 52, 20, 62, 30, 54, 22},
                                                                           {3, 35, 11, 43, 1, 33, 9, 41},
                                                                           {51, 19, 59, 27, 49, 17, 57, 25},
                                                                           {15, 47, 7, 39, 13, 45, 5, 37},
                                                                           {63, 31, 55, 23, 61, 29, 53, 21}}};

}  // namespace vorli::ui

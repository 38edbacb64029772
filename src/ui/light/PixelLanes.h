#pragma once

#include <cstdint>
#include <cstring>

namespace vorli::ui {

/// Two pixels as eight 16-bit numbers, in the order blue, green, red, alpha. Each number holds eight bits of
/// the component and eight of its fraction. The compiler keeps them in one register.
using PixelLanes = std::uint16_t __attribute__((vector_size(16)));
using LaneBytes = std::uint8_t __attribute__((vector_size(16)));
using LanePixels = std::uint32_t __attribute__((vector_size(16)));

inline PixelLanes loadLanes(const void* from) {
  PixelLanes lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

/// Returns the upper 16 bits of each product.
inline PixelLanes upperProduct(PixelLanes a, PixelLanes b) {
#ifdef __SSE2__
  using Signed = std::int16_t __attribute__((vector_size(16)));
  return reinterpret_cast<PixelLanes>(
      __builtin_ia32_pmulhuw128(reinterpret_cast<Signed>(a), reinterpret_cast<Signed>(b)));
#else
  using Wide = std::uint32_t __attribute__((vector_size(32)));
  return __builtin_convertvector((__builtin_convertvector(a, Wide) * __builtin_convertvector(b, Wide)) >> 16,
                                 PixelLanes);
#endif
}

inline PixelLanes firstHalves(PixelLanes a, PixelLanes b) {
  return __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
}
inline PixelLanes secondHalves(PixelLanes a, PixelLanes b) {
  return __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
}
inline PixelLanes swappedHalves(PixelLanes a) {
  return __builtin_shufflevector(a, a, 4, 5, 6, 7, 0, 1, 2, 3);
}

/// Stores four pixels without their fractions; `to` may be unaligned.
inline void storePixels(void* to, PixelLanes first, PixelLanes second) {
  const LaneBytes bytes =
      __builtin_shufflevector(reinterpret_cast<LaneBytes>(first), reinterpret_cast<LaneBytes>(second), 1, 3,
                              5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
  std::memcpy(to, &bytes, sizeof bytes);
}

/// Returns the first of the two pixels without its fractions.
inline std::uint32_t firstPixel(PixelLanes lanes) {
  const auto bytes = reinterpret_cast<LaneBytes>(lanes);
  return reinterpret_cast<LanePixels>(
      __builtin_shufflevector(bytes, bytes, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31))[0];
}

/// Widens one pixel; the second one is transparent.
inline PixelLanes lanesOf(std::uint32_t pixel) {
  const auto bytes = reinterpret_cast<LaneBytes>(LanePixels{pixel, 0, 0, 0});
  return reinterpret_cast<PixelLanes>(
      __builtin_shufflevector(LaneBytes{}, bytes, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

}  // namespace vorli::ui

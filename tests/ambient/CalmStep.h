#pragma once

namespace vorli {

/// Seconds between two values of the calm intensity.
inline constexpr double calmStep = 0.016666666;

}  // namespace vorli

#pragma once

#include "base/Colour.h"

#include <gtest/gtest.h>

namespace vorli {

/// Compares all components, including alpha.
inline void expectColour(const Colour& colour, const Colour& expected, double tolerance = 1e-9) {
  EXPECT_NEAR(colour.red, expected.red, tolerance);
  EXPECT_NEAR(colour.green, expected.green, tolerance);
  EXPECT_NEAR(colour.blue, expected.blue, tolerance);
  EXPECT_NEAR(colour.alpha, expected.alpha, tolerance);
}

}  // namespace vorli

#pragma once

#include "base/Colour.h"

namespace vorli {

/// Colour of a progress value: seven stops from teal at 0 to deep red at 1, blended in between; values
/// outside are clamped.
Colour ringGradientColour(double progress);

/// Colour as it is shown: tinted by the user's local hour, 0 to 23, and moved towards the calm colour.
Colour ringDisplayColour(double progress, int localHour, double calmIntensity);

}  // namespace vorli

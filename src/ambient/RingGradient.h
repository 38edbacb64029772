#pragma once

#include "base/Colour.h"

namespace vorli {

/// The colour of a progress value: seven stops from teal at 0 to deep red at 1, blended in between; values
/// outside take the nearest end.
Colour ringGradientColour(double progress);

/// The colour as it is shown: tinted by the hour of the user's day, 0 to 23, and drawn to the calm one.
Colour ringDisplayColour(double progress, int localHour, double calmIntensity);

}  // namespace vorli

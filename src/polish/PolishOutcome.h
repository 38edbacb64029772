#pragma once

#include "sampling/MemorySnapshot.h"

#include <optional>
#include <string_view>

namespace vorli {

// The words and the figure with which a polish ends.

inline constexpr std::string_view approveHelperSentence =
    "A gentle tidy. Approve Vorli in Login Items for a full polish.";
inline constexpr std::string_view helperOutOfReachSentence =
    "A gentle tidy. Couldn't reach the helper for a full polish.";
inline constexpr std::string_view soundSparedSentence =
    "A gentle tidy. Held off the deep polish so your audio stays smooth.";
inline constexpr std::string_view polishedSentence = "Now, your Mac has room to breathe.";

/// By how many percent less memory is in use than before, cut to a whole number. Empty when one of
/// the two could not be read, when use has not fallen, and below 2.
std::optional<int> lighterPercentage(const std::optional<MemorySnapshot>& before,
                                     const MemorySnapshot& after);

/// Writes down what the hold has brought, for whoever reads the log.
void logSettledRing(double ringProgress, const std::optional<MemorySnapshot>& before,
                    const MemorySnapshot& now);

}  // namespace vorli

#pragma once

#include "popover/PopoverView.h"
#include "ui/popover/PopoverScene.h"

#include <optional>

namespace vorli::ui {

/// Seconds from the popover's frame at `now` to the next one, given what moves: `displaySeconds`, the
/// screen's own interval, for quick motion; longer for soft light, for a ring that creeps, and for the slow
/// breath. Empty when the picture is at rest. `shown` is the frame at `now`.
std::optional<double> secondsToNextFrame(const PopoverView& view, const PopoverScene& scene,
                                         const PopoverPicture& shown, double now, double displaySeconds);

}  // namespace vorli::ui

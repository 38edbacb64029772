#pragma once

#include "ui/popover/PopoverPicture.h"

class QPainter;

namespace vorli::bench {

/// What our painting is told beside: the same card painted in the plain way, each of the three blurred lights
/// as a gradient of the paint engine, each spark with one, the ring with a conic one, text and panel, and all
/// of it anew in each frame. It has less to do than the popover: no shadow, which would be 28 more shapes, no
/// gear, no glow beneath a spark; and the profiles of its blurred lights are given, so that only painting
/// counts.
void paintPopoverDirectly(QPainter& painter, const ui::PopoverPicture& picture);

}  // namespace vorli::bench

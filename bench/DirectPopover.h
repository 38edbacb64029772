#pragma once

#include "ui/popover/PopoverPicture.h"

class QPainter;

namespace vorli::bench {

/// The reference for our painting: the same card painted in the plain way, all of it in each frame. Each
/// of the three blurred lights and each spark is a gradient of the paint engine, the ring a conic one, and
/// text and panel are drawn directly. It has less to do than the popover: no shadow, which would be 28 more
/// shapes, no gear, and no glow beneath a spark. The profiles of its blurred lights are precomputed, so that
/// only painting is measured.
void paintPopoverDirectly(QPainter& painter, const ui::PopoverPicture& picture);

}  // namespace vorli::bench

#pragma once

#include "ui/popover/PopoverPicture.h"

class QPainter;

namespace vorli::bench {

/// The floor's opposite: the same popover painted in the plain way, every gradient by the paint engine and
/// everything anew in each frame. `profiles` of the blurred layers are given, so that only painting counts.
void paintPopoverDirectly(QPainter& painter, const ui::PopoverPicture& picture);

}  // namespace vorli::bench

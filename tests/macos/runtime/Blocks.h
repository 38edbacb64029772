#pragma once

#include <objc/objc.h>

namespace vorli::objc {

bool isBlock(id object);

/// Moves a block from the stack to the heap, or counts one more owner.
id copyBlock(id block);

/// Counts one more owner of a block on the heap; one on the stack stays where it is.
id retainBlock(id block);

void releaseBlock(id block);

}  // namespace vorli::objc

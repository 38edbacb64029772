#pragma once

namespace vorli::linuxhost {

/// Lets all other threads of the machine go first. Affects the calling thread only, and for good: a user may
/// not raise the priority again.
void lowerThreadPriority();

}  // namespace vorli::linuxhost

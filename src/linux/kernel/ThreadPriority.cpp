#include "linux/kernel/ThreadPriority.h"

#include <unistd.h>

namespace vorli::linuxhost {

// On Linux, each thread has a nice value of its own.
void lowerThreadPriority() {
  constexpr int step = 5;
  [[maybe_unused]] const int lowered = nice(step);
}

}  // namespace vorli::linuxhost

// Loaded before the C library into a daemon under test: a sync(2) that never ends, as on a broken disk.
#include <poll.h>

extern "C" void sync() noexcept {
  for (;;) ::poll(nullptr, 0, -1);
}

// Loaded before the C library into a daemon under test: a sync(2) that says when it begins and takes as many
// milliseconds as VORLI_TEST_SYNC_MILLISECONDS tells, or for ever without it, as on a broken disk.
#include <cstdlib>
#include <poll.h>
#include <unistd.h>

namespace {

// The daemon clears its environment at start.
const char* const setting = std::getenv("VORLI_TEST_SYNC_MILLISECONDS");
const int milliseconds = setting ? std::atoi(setting) : -1;

}  // namespace

extern "C" void sync() noexcept {
  constexpr char text[] = "sync begins\n";
  if (::write(STDERR_FILENO, text, sizeof text - 1) < 0) return;
  do {
    ::poll(nullptr, 0, milliseconds);
  } while (milliseconds < 0);
}

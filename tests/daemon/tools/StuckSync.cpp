// A sync(2) that is loaded before the C library into a daemon under test. It prints a line when it begins,
// and takes VORLI_TEST_SYNC_MILLISECONDS, or for ever without that variable, as on a broken disk.
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

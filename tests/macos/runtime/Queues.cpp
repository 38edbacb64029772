#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/event.h>
#include <sys/timerfd.h>
#include <unistd.h>

// A queue is a timer of this system, which becomes readable in the same way.

namespace {

bool isSet(int queue) {
  itimerspec left{};
  timerfd_gettime(queue, &left);
  return left.it_value.tv_sec != 0 || left.it_value.tv_nsec != 0;
}

// A time of zero would stop the timer.
int setNanoseconds(int queue, std::int64_t nanoseconds) {
  constexpr std::int64_t second = 1'000'000'000;
  itimerspec time{};
  time.it_value = {nanoseconds / second, std::max<std::int64_t>(nanoseconds % second, 1)};
  return timerfd_settime(queue, 0, &time, nullptr);
}

int fail(int error) {
  errno = error;
  return -1;
}

int change(int queue, const struct kevent& wanted) {
  if (wanted.filter != EVFILT_TIMER) return fail(EINVAL);
  if (wanted.flags == EV_DELETE) {
    if (!isSet(queue)) return fail(ENOENT);
    const itimerspec never{};
    return timerfd_settime(queue, 0, &never, nullptr);
  }
  if (wanted.flags != (EV_ADD | EV_ONESHOT) || wanted.fflags != (NOTE_NSECONDS | NOTE_CRITICAL))
    return fail(EINVAL);
  return setNanoseconds(queue, wanted.data);
}

}  // namespace

int kqueue() {
  return timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK);
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const struct timespec*) {
  for (int index = 0; index < changeCount; ++index)
    if (change(queue, changes[index]) != 0) return -1;
  std::uint64_t expiries = 0;
  if (eventCount == 0 || read(queue, &expiries, sizeof expiries) != sizeof expiries) return 0;
  EV_SET(&events[0], 1, EVFILT_TIMER, EV_ONESHOT, 0, static_cast<intptr_t>(expiries), nullptr);
  return 1;
}

#include "linux/daemon/BusLoopScheduler.h"

#include "base/Assert.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

namespace vorli::linuxhost {

namespace {

constexpr int sendRestMilliseconds = 1000;

void drain(int fileDescriptor) {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto size = ::read(fileDescriptor, &count, sizeof count);
}

std::optional<timespec> waitingTime(const sdbus::IConnection::PollData& data) {
  const auto left = data.getRelativeTimeout();
  if (!left) return std::nullopt;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*left);
  const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(*left - seconds);
  return timespec{seconds.count(), static_cast<long>(rest.count())};
}

}  // namespace

BusLoopScheduler::BusLoopScheduler()
    : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
  VORLI_ASSERT(wakeUp_ && timer_);
  watch(wakeUp_.get(), [this] { drain(wakeUp_.get()); });
  watch(timer_.get(), [this] {
    drain(timer_.get());
    armedFor_ = 0.0;
  });
}

double BusLoopScheduler::now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void BusLoopScheduler::post(Work work) {
  {
    const std::lock_guard guard(lock_);
    posted_.push_back(std::move(work));
  }
  if (std::this_thread::get_id() == thread_) return;  // looks at the queue before it sleeps
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto size = ::write(wakeUp_.get(), &one, sizeof one);
}

Scheduler::TimerId BusLoopScheduler::after(double seconds, Work work, Precision) {
  const TimerId id = ++lastId_;
  timers_.emplace(std::pair(now() + std::max(seconds, 0.0), id), std::move(work));
  return id;
}

void BusLoopScheduler::cancel(TimerId timer) {
  std::erase_if(timers_, [timer](const auto& entry) { return entry.first.second == timer; });
}

void BusLoopScheduler::watch(int fileDescriptor, UniqueFunction<void()> handler) {
  watched_.emplace_back(fileDescriptor, std::move(handler));
}

void BusLoopScheduler::run(sdbus::IConnection& connection) {
  while (!stopping_) {
    // One message at a time, so that a caller's flood does not keep results and timers waiting.
    const bool handled = connection.processPendingRequest();
    runPosted();
    runDueTimers();
    if (!handled && !stopping_) waitForEvents(connection);
  }
  sendRest(connection);
}

void BusLoopScheduler::runPosted() {
  std::deque<Work> ready;
  {
    const std::lock_guard guard(lock_);
    ready.swap(posted_);
  }
  for (auto& work : ready) work();
}

void BusLoopScheduler::runDueTimers() {
  while (!timers_.empty() && timers_.begin()->first.first <= now()) {
    auto node = timers_.extract(timers_.begin());
    node.mapped()();
  }
}

// Only for an earlier moment than the armed one: a timer that comes too early costs one empty turn, which is
// cheaper than a call to the kernel for every request.
void BusLoopScheduler::armTimer() {
  if (timers_.empty()) return;
  const double due = timers_.begin()->first.first;
  if (armedFor_ != 0.0 && armedFor_ <= due) return;
  const double whole = std::floor(due);
  itimerspec moment{};
  moment.it_value.tv_sec = static_cast<time_t>(whole);
  moment.it_value.tv_nsec = static_cast<long>((due - whole) * 1e9);
  ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &moment, nullptr);
  armedFor_ = due;
}

void BusLoopScheduler::waitForEvents(sdbus::IConnection& connection) {
  armTimer();
  const auto data = connection.getEventLoopPollData();
  std::vector<pollfd> files{{data.fd, data.events, 0}};
  for (const auto& [fileDescriptor, handler] : watched_) files.push_back({fileDescriptor, POLLIN, 0});

  auto limit = waitingTime(data);
  {
    const std::lock_guard guard(lock_);
    if (!posted_.empty()) limit = timespec{};
  }
  if (::ppoll(files.data(), files.size(), limit ? &*limit : nullptr, nullptr) <= 0) return;
  for (std::size_t i = 0; i < watched_.size(); ++i)
    if (files[i + 1].revents != 0) watched_[i].second();
}

void BusLoopScheduler::sendRest(sdbus::IConnection& connection) {
  for (;;) {
    const auto data = connection.getEventLoopPollData();
    if ((data.events & POLLOUT) == 0) return;
    pollfd file{data.fd, POLLOUT, 0};
    if (::poll(&file, 1, sendRestMilliseconds) <= 0) return;
    connection.processPendingRequest();
  }
}

}  // namespace vorli::linuxhost

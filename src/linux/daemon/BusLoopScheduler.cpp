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

namespace vorli::linuxhost {

namespace {

constexpr int sendRestMilliseconds = 1000;

void drain(int fileDescriptor) {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto size = ::read(fileDescriptor, &count, sizeof count);
}

std::optional<double> waitingTime(const sdbus::IConnection::PollData& data) {
  const auto left = data.getRelativeTimeout();
  if (!left) return std::nullopt;
  return std::max(std::chrono::duration<double>(*left).count(), 0.0);
}

timespec timespecOf(double seconds) {
  const double whole = std::floor(seconds);
  return {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
}

}  // namespace

BusLoopScheduler::BusLoopScheduler() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  VORLI_ASSERT(wakeUp_);
  watch(wakeUp_.get(), [this] { drain(wakeUp_.get()); });
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

void BusLoopScheduler::waitForEvents(sdbus::IConnection& connection) {
  const auto data = connection.getEventLoopPollData();
  std::vector<pollfd> files{{data.fd, data.events, 0}};
  for (const auto& [fileDescriptor, handler] : watched_) files.push_back({fileDescriptor, POLLIN, 0});

  auto limit = waitingTime(data);
  if (!timers_.empty()) {
    const double left = std::max(timers_.begin()->first.first - now(), 0.0);
    limit = std::min(limit.value_or(left), left);
  }
  {
    const std::lock_guard guard(lock_);
    if (!posted_.empty()) limit = 0.0;
  }
  const auto wait = timespecOf(limit.value_or(0.0));
  if (::ppoll(files.data(), files.size(), limit ? &wait : nullptr, nullptr) <= 0) return;
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

#include "linux/daemon/BusLoopScheduler.h"

#include "base/Assert.h"
#include "linux/bus/Library.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr int sendRestMilliseconds = 1000;

void drain(int fileDescriptor) {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto size = ::read(fileDescriptor, &count, sizeof count);
}

bool isSending(const sdbus::IConnection::PollData& data) {
  return (data.events & POLLOUT) != 0;
}

bool isWritable(int fileDescriptor) {
  pollfd file{fileDescriptor, POLLOUT, 0};
  return ::poll(&file, 1, 0) > 0;
}

std::optional<double> waitingTime(const sdbus::IConnection::PollData& data) {
  const auto left = bus::timeLeft(data);
  if (!left) return std::nullopt;
  return std::max(std::chrono::duration<double>(*left).count(), 0.0);
}

std::optional<double> earlier(std::optional<double> a, std::optional<double> b) {
  if (!a || !b) return a ? a : b;
  return std::min(*a, *b);
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
  if (std::this_thread::get_id() == thread_) return;  // the loop checks the queue before it sleeps
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

bool BusLoopScheduler::run(const BusTraffic& traffic) {
  while (!stopping_) {
    const bool handled = serveConnections(traffic);
    runPosted();
    runDueTimers();
    if (!handled && !stopping_) waitForEvents(traffic);
  }
  sendRest(traffic.calls);
  return !isGivenUp_;
}

// Handles one message of each connection at a time, so that a flood of calls does not delay results and
// timers. While no question is pending, looking for answers would only add a system call to each ping.
bool BusLoopScheduler::serveConnections(const BusTraffic& traffic) {
  const bool handledCall = serveCalls(traffic);
  const bool looksForAnswers = std::exchange(hasAnswers_, false) || traffic.awaitsAnswers();
  const bool handledAnswer = looksForAnswers && bus::processNext(traffic.questions);
  hasAnswers_ = handledAnswer;
  return handledCall || handledAnswer;
}

// The library queues answers that the bus does not take, and reads further calls all the same. So no call is
// read until its queue is empty; otherwise the queue would grow until memory runs out.
bool BusLoopScheduler::serveCalls(const BusTraffic& traffic) {
  const auto data = traffic.calls.getEventLoopPollData();
  if (isSending(data)) {
    if (isWritable(data.fd)) {
      cancel(std::exchange(unsentTimer_, 0));
      return bus::processNext(traffic.calls);
    }
    if (unsentTimer_ == 0) unsentTimer_ = after(mostUnsentSeconds, [this] { isGivenUp_ = stopping_ = true; });
    return false;
  }
  return traffic.takesCalls() && bus::processNext(traffic.calls);
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

void BusLoopScheduler::waitForEvents(const BusTraffic& traffic) {
  const auto questions = traffic.questions.getEventLoopPollData();
  std::vector<pollfd> files{{questions.fd, questions.events, 0}};
  for (const auto& [fileDescriptor, handler] : watched_) files.push_back({fileDescriptor, POLLIN, 0});
  auto limit = earlier(waitingTime(questions), timeToOwnWork());
  const auto calls = traffic.calls.getEventLoopPollData();
  if (isSending(calls)) {
    files.push_back({calls.fd, POLLOUT, 0});
  } else if (traffic.takesCalls()) {
    files.push_back({calls.fd, calls.events, 0});
    limit = earlier(limit, waitingTime(calls));
  }

  const auto wait = timespecOf(limit.value_or(0.0));
  const int ready = ::ppoll(files.data(), files.size(), limit ? &wait : nullptr, nullptr);
  hasAnswers_ = ready == 0 || files[0].revents != 0;
  if (ready <= 0) return;
  for (std::size_t i = 0; i < watched_.size(); ++i)
    if (files[i + 1].revents != 0) watched_[i].second();
}

std::optional<double> BusLoopScheduler::timeToOwnWork() {
  const std::lock_guard guard(lock_);
  if (!posted_.empty()) return 0.0;
  if (timers_.empty()) return std::nullopt;
  return std::max(timers_.begin()->first.first - now(), 0.0);
}

void BusLoopScheduler::sendRest(sdbus::IConnection& connection) {
  for (;;) {
    const auto data = connection.getEventLoopPollData();
    if (!isSending(data)) return;
    pollfd file{data.fd, POLLOUT, 0};
    if (::poll(&file, 1, sendRestMilliseconds) <= 0) return;
    bus::processNext(connection);
  }
}

}  // namespace vorli::linuxhost

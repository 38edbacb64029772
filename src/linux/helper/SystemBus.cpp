#include "linux/helper/SystemBus.h"

#include "base/Assert.h"
#include "linux/bus/Library.h"
#include "posix/HeldSignals.h"

#include <array>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vorli::linuxhost {

namespace {

// Interval of attempts to reach a missing bus while there are clients, so that they are notified of its
// return and need not ask.
constexpr int reconnectMilliseconds = 10'000;

std::thread startThread(auto body) {
  const posix::HeldSignals held;
  return std::thread(std::move(body));
}

}  // namespace

class SystemBus::Loop {
 public:
  enum class End { comesAtOnce, waitsForTheBus };

  Loop() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) { VORLI_ASSERT(wake_ >= 0); }
  ~Loop() { close(wake_); }
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  void serve() {
    while (!isStopping()) {
      dispatch();
      if (!runQueued() && !wait() && !connection_) connect();
    }
    disconnect();
  }

  void attach(std::shared_ptr<Client> client) {
    enqueue([this, client = std::move(client)] {
      clients_.push_back(client);
      introduce(*client);
    });
  }

  void enqueue(Work work) {
    {
      const std::lock_guard guard(lock_);
      queue_.push_back(std::move(work));
    }
    wakeUp();
  }

  End stop() {
    End end = End::comesAtOnce;
    {
      const std::lock_guard guard(lock_);
      stopping_ = true;
      // Shutting down the socket makes every wait for the bus fail at once. While connecting there is no
      // socket to shut down yet.
      if (connecting_) end = End::waitsForTheBus;
      if (socket_ >= 0) shutdown(socket_, SHUT_RDWR);
    }
    wakeUp();
    return end;
  }

  bool hasHungUp() const {
    if (!connection_) return true;
    pollfd socket{socket_, 0, 0};
    return poll(&socket, 1, 0) > 0 && (socket.revents & (POLLHUP | POLLERR)) != 0;
  }

 private:
  bool isStopping() {
    const std::lock_guard guard(lock_);
    return stopping_;
  }

  void wakeUp() const {
    const std::uint64_t one = 1;
    // A full counter has woken the thread already.
    [[maybe_unused]] const auto written = write(wake_, &one, sizeof one);
  }

  void dispatch() {
    try {
      while (connection_ && bus::processNext(*connection_)) {
      }
    } catch (const sdbus::Error&) {
      disconnect();
    }
  }

  /// False when there was nothing to do.
  bool runQueued() {
    std::vector<Work> batch;
    {
      const std::lock_guard guard(lock_);
      batch.swap(queue_);
    }
    if (batch.empty()) return false;
    if (!connection_) connect();
    for (auto& work : batch) {
      if (isStopping()) return true;
      try {
        work();
      } catch (const sdbus::Error&) {
        disconnect();  // the bus was lost during the work
      }
    }
    return true;
  }

  void connect() {
    {
      const std::lock_guard guard(lock_);
      if (stopping_) return;
      connecting_ = true;
    }
    std::unique_ptr<sdbus::IConnection> made;
    int socket = -1;
    try {
      made = sdbus::createSystemBusConnection();
      socket = made->getEventLoopPollData().fd;
    } catch (const sdbus::Error&) {
      made.reset();
    }
    {
      const std::lock_guard guard(lock_);
      connecting_ = false;
      if (stopping_) return;  // nobody needs the connection now
      socket_ = socket;
    }
    connection_ = std::move(made);
    for (const auto& client : clients_) introduce(*client);
  }

  // The bus may be lost during these calls, too.
  void introduce(Client& client) {
    try {
      if (connection_) return client.connected(*connection_);
    } catch (const sdbus::Error&) {
      disconnect();
    }
    client.disconnected();
  }

  void disconnect() {
    if (!connection_) return;
    for (const auto& client : clients_) client->disconnected();
    {
      const std::lock_guard guard(lock_);
      socket_ = -1;
    }
    connection_.reset();
  }

  /// False when the timeout passed without an event.
  bool wait() {
    std::array<pollfd, 2> sources{{{wake_, POLLIN, 0}, {-1, 0, 0}}};
    int timeoutMilliseconds = clients_.empty() ? -1 : reconnectMilliseconds;
    if (connection_) {
      try {
        const auto data = connection_->getEventLoopPollData();
        sources[1] = {data.fd, data.events, 0};
        timeoutMilliseconds = data.getPollTimeout();
      } catch (const sdbus::Error&) {
        disconnect();
        return true;
      }
    }
    const int ready = poll(sources.data(), sources.size(), timeoutMilliseconds);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto drained = read(wake_, &count, sizeof count);
    return ready != 0;
  }

  const int wake_;

  std::mutex lock_;  // guards the next four members
  std::vector<Work> queue_;
  bool stopping_ = false;
  bool connecting_ = false;
  int socket_ = -1;

  // Used by the bus's thread only. The clients are destroyed before the connection, because they hold objects
  // made from it.
  std::unique_ptr<sdbus::IConnection> connection_;
  std::vector<std::shared_ptr<Client>> clients_;
};

SystemBus::SystemBus()
    : loop_(std::make_shared<Loop>()), thread_(startThread([loop = loop_] { loop->serve(); })) {}

SystemBus::~SystemBus() {
  if (loop_->stop() == Loop::End::waitsForTheBus) {
    // The thread owns all that it uses, and ends when the bus answers or the program exits.
    thread_.detach();
  } else {
    thread_.join();
  }
}

void SystemBus::attach(std::shared_ptr<Client> client) {
  loop_->attach(std::move(client));
}

void SystemBus::run(Work work) {
  loop_->enqueue(std::move(work));
}

bool SystemBus::hasHungUp() const {
  return loop_->hasHungUp();
}

}  // namespace vorli::linuxhost

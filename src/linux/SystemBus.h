#pragma once

#include "base/UniqueFunction.h"

#include <memory>
#include <thread>

namespace sdbus {
class IConnection;
}

namespace vorli::linuxhost {

/// The program's one connection to the system bus, served by a thread of its own: connecting, asking and
/// listening happen there, so a bus that hangs never holds up the main thread. The library leaks and stalls
/// when it is called from two threads, so nothing of it is touched anywhere else. A bus that is lost or not
/// there is looked for from time to time, and the clients are told when it has come back.
class SystemBus {
 public:
  /// What lives on the bus's thread and works with the connection.
  class Client {
   public:
    virtual ~Client() = default;
    /// A connection stands; it stays until `disconnected`.
    virtual void connected(sdbus::IConnection& connection) = 0;
    /// The connection is lost, or could not be made. Whatever was made from it has to go before the return.
    virtual void disconnected() = 0;
  };
  using Work = UniqueFunction<void()>;

  SystemBus();
  /// Ends the thread without waiting for the bus.
  ~SystemBus();
  SystemBus(const SystemBus&) = delete;
  SystemBus& operator=(const SystemBus&) = delete;

  /// Adds a client and connects when there is no connection. Any thread.
  void attach(std::shared_ptr<Client> client);

  /// Runs `work` on the bus's thread, after an attempt to connect when there is no connection. Any thread.
  void run(Work work);

  /// True when the other end of the connection is gone, although messages of it may still be read. On the
  /// bus's thread.
  bool hasHungUp() const;

 private:
  class Loop;

  std::shared_ptr<Loop> loop_;
  std::thread thread_;
};

}  // namespace vorli::linuxhost

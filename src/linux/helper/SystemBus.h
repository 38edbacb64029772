#pragma once

#include "base/UniqueFunction.h"

#include <memory>
#include <thread>

namespace sdbus {
class IConnection;
}

namespace vorli::linuxhost {

/// The program's one connection to the system bus, served by its own thread, so that a bus that hangs never
/// blocks the main thread. The library leaks and stalls when it is called from two threads, so only this
/// thread calls it. A missing bus is tried again from time to time, and the clients are notified when it
/// returns.
class SystemBus {
 public:
  /// An object that uses the connection, on the bus's thread.
  class Client {
   public:
    virtual ~Client() = default;
    /// Called when a connection was made, which stays valid until `disconnected`.
    virtual void connected(sdbus::IConnection& connection) = 0;
    /// Called when the connection was lost or could not be made. Everything made from it must be destroyed
    /// before this returns.
    virtual void disconnected() = 0;
  };
  using Work = UniqueFunction<void()>;

  SystemBus();
  /// Ends the thread without waiting for the bus.
  ~SystemBus();
  SystemBus(const SystemBus&) = delete;
  SystemBus& operator=(const SystemBus&) = delete;

  /// Adds a client and connects when there is no connection. Thread-safe.
  void attach(std::shared_ptr<Client> client);

  /// Runs `work` on the bus's thread, after an attempt to connect when there is no connection. Thread-safe.
  void run(Work work);

  /// True when the other end of the connection is gone, even if there are still messages to read. Call it on
  /// the bus's thread.
  bool hasHungUp() const;

 private:
  class Loop;

  std::shared_ptr<Loop> loop_;
  std::thread thread_;
};

}  // namespace vorli::linuxhost

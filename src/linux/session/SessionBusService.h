#pragma once

#include <QDBusConnection>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vorli::linuxhost {

/// The program's name and object on the session bus. There is one instance per session: a second start
/// activates the first and exits. Other programs can read what the dial shows, but cannot change anything.
class SessionBusService {
 public:
  struct Status {
    double ringProgress = 0.0;
    std::uint64_t ticks = 0;
    std::string helperStatus;
  };

  /// `noAnswer`: another instance owns the name, but hangs.
  enum class Claim { owned, alreadyRunning, noAnswer, noBus };

  SessionBusService();
  ~SessionBusService();

  /// Acquires the name `com.kv.vorli`. When another instance owns it, that instance is activated instead,
  /// which takes at most 3 s. Otherwise blocks for one round trip of the bus. Call it before the main loop
  /// runs.
  Claim claim();

  /// Sets the handler that is called on the main thread when a second start, a launcher or a notification
  /// activates the program. The message for which the bus started this program does not count: a start shows
  /// nothing.
  void setActivationHandler(std::function<void()> handler);
  /// Call this when the launch is over. Every message that arrives later is handled.
  void startIsOver();
  void setStatusProvider(std::function<Status()> provider);

 private:
  class Object;

  QDBusConnection bus_;
  std::unique_ptr<Object> object_;
};

}  // namespace vorli::linuxhost

#pragma once

#include <QDBusConnection>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vorli::linuxhost {

/// The program's place on the session bus: one instance per session, which a second start wakes instead of
/// running. Other programs can read, and only read, what the dial shows.
class SessionBusService {
 public:
  struct Status {
    double ringProgress = 0.0;
    std::uint64_t ticks = 0;
    std::string helperStatus;
  };

  enum class Claim { owned, alreadyRunning, noBus };

  SessionBusService();
  ~SessionBusService();

  /// Takes the name `com.kv.vorli`. When another instance has it, that one is activated instead. Blocks for
  /// one round trip of the bus; call it before the main loop runs.
  Claim claim();

  /// What to do when a second start, a launcher or a notification brings the program up. Runs on the main
  /// thread.
  void setActivationHandler(std::function<void()> handler);
  void setStatusProvider(std::function<Status()> provider);

 private:
  class Object;

  QDBusConnection bus_;
  std::unique_ptr<Object> object_;
};

}  // namespace vorli::linuxhost

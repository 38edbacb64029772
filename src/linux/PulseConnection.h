#pragma once

#include "base/Scheduler.h"
#include "linux/PulseLibrary.h"

#include <expected>
#include <functional>
#include <string>

namespace vorli::linuxhost {

/// What the sound server says of an output.
struct PulseSink {
  std::string monitorSource;  // where its mix can be recorded, after volume and mute
  bool isRunning = false;     // false: idle or suspended, so nothing plays
  bool isMuted = false;
  unsigned sampleRate = 44100;

  bool isAudible() const { return isRunning && !isMuted; }
};

/// One short-lived connection to the user's sound server, served by its own loop on the calling thread. It
/// never starts a server. Errors are the library's codes. Deadlines are times of the clock. Main thread.
class PulseConnection {
 public:
  PulseConnection(const PulseLibrary& pulse, const Scheduler& clock);
  ~PulseConnection();
  PulseConnection(const PulseConnection&) = delete;
  PulseConnection& operator=(const PulseConnection&) = delete;

  std::expected<void, int> open(double deadline);
  std::expected<PulseSink, int> defaultSink(double deadline);

  /// Serves the connection until `done` says so. False when the deadline came or the connection broke first.
  bool serveUntil(double deadline, const std::function<bool()>& done);

  const PulseLibrary& pulse() const { return pulse_; }
  pa_context* context() const { return context_; }
  /// The code of what last went wrong on the connection; of a time-out when nothing did.
  int lastError() const;

 private:
  bool await(pa_operation* operation, double deadline);

  const PulseLibrary& pulse_;
  const Scheduler& clock_;
  pa_mainloop* const loop_;
  pa_context* const context_;
};

}  // namespace vorli::linuxhost

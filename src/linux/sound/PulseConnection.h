#pragma once

#include "base/Scheduler.h"
#include "linux/sound/PulseLibrary.h"

#include <expected>
#include <functional>
#include <string>

namespace vorli::linuxhost {

/// An output as the sound server describes it.
struct PulseSink {
  std::string monitorSource;  // source that records its mix
  bool isRunning = false;     // false: idle or suspended, so nothing plays
  bool isMuted = false;       // or at volume 0
  float monitorGain = 1.0F;   // factor by which the server's volume has scaled the recorded mix; not 0
  unsigned sampleRate = 44100;
};

/// One short-lived connection to the user's sound server, served by its own loop on the calling thread. Never
/// starts a server. Errors are the library's codes. Deadlines are times of `clock`. Main thread.
class PulseConnection {
 public:
  PulseConnection(const PulseLibrary& pulse, const Scheduler& clock);
  ~PulseConnection();
  PulseConnection(const PulseConnection&) = delete;
  PulseConnection& operator=(const PulseConnection&) = delete;

  [[nodiscard]] std::expected<void, int> open(double deadline);
  [[nodiscard]] std::expected<PulseSink, int> defaultSink(double deadline);

  /// Serves the connection until `done` returns true. False when the deadline passes or the connection breaks
  /// first.
  bool serveUntil(double deadline, const std::function<bool()>& done);

  const PulseLibrary& pulse() const { return pulse_; }
  pa_context* context() const { return context_; }
  /// Code of the connection's last error, or of a time-out when there was no error.
  int lastError() const;

 private:
  bool await(pa_operation* operation, double deadline);

  const PulseLibrary& pulse_;
  const Scheduler& clock_;
  pa_mainloop* const loop_;
  pa_context* const context_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "base/Scheduler.h"
#include "linux/PulseConnection.h"
#include "ports/AudioOutputTap.h"

#include <expected>
#include <optional>

namespace vorli::linuxhost {

/// A recording of what an output plays, in stereo 32-bit floats. Ends with the object. Main thread.
class PulseRecording {
 public:
  PulseRecording(PulseConnection& connection, const Scheduler& clock,
                 ports::AudioOutputTap::InputBlock input);
  ~PulseRecording();
  PulseRecording(const PulseRecording&) = delete;
  PulseRecording& operator=(const PulseRecording&) = delete;

  /// Returns when the first sound data is there, with the time at which it came.
  std::expected<double, ports::AudioTapFailure> start(const PulseSink& sink, double deadline);

 private:
  void take(pa_stream* stream);

  PulseConnection& connection_;
  const PulseLibrary& pulse_;
  const Scheduler& clock_;
  ports::AudioOutputTap::InputBlock input_;
  pa_stream* stream_ = nullptr;
  std::optional<double> firstDataAt_;
};

}  // namespace vorli::linuxhost

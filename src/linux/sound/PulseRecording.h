#pragma once

#include "base/Scheduler.h"
#include "linux/sound/PulseConnection.h"
#include "ports/AudioOutputTap.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// Records what an output plays, in stereo 32-bit floats, until it is destroyed. Main thread.
class PulseRecording {
 public:
  PulseRecording(PulseConnection& connection, const Scheduler& clock,
                 ports::AudioOutputTap::InputBlock input);
  ~PulseRecording();
  PulseRecording(const PulseRecording&) = delete;
  PulseRecording& operator=(const PulseRecording&) = delete;

  /// Waits for the first sound data and returns the time at which it arrived.
  [[nodiscard]] std::expected<double, ports::AudioTapFailure> start(const PulseSink& sink, double deadline);

  /// True once no more sound can come: the output was removed, or the server ended.
  bool isBroken() const;

 private:
  void take(pa_stream* stream);
  void passOn(const void* data, std::size_t bytes);

  PulseConnection& connection_;
  const PulseLibrary& pulse_;
  const Scheduler& clock_;
  ports::AudioOutputTap::InputBlock input_;
  pa_stream* stream_ = nullptr;
  float monitorGain_ = 1.0F;
  std::vector<float> unscaled_;
  std::optional<double> firstDataAt_;
};

}  // namespace vorli::linuxhost

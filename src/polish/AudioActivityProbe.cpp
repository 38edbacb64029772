#include "polish/AudioActivityProbe.h"

#include "base/Logger.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <span>

namespace vorli {

namespace {

using TapStep = ports::AudioTapFailure::Step;

constexpr Logger audioLog{logSubsystem, "audio-detector"};

/// The running peak, which only grows: the only state that the audio thread shares.
class AtomicFloat {
 public:
  void raiseTo(float candidate) {
    const std::lock_guard guard(lock);
    if (candidate > _value) _value = candidate;
  }
  float value() const {
    const std::lock_guard guard(lock);
    return _value;
  }

 private:
  mutable std::mutex lock;
  float _value = 0.0F;
};

// Runs on a real-time thread: no allocation. Copies bytes, because a buffer may be unaligned.
float peakOf(std::span<const ports::AudioBuffer> buffers) {
  float peak = 0.0F;
  for (const auto& buffer : buffers) {
    if (!buffer.data) continue;
    const auto* bytes = static_cast<const std::byte*>(buffer.data);
    for (std::size_t at = 0; at + sizeof(float) <= buffer.byteSize; at += sizeof(float)) {
      float sample;
      std::memcpy(&sample, bytes + at, sizeof sample);
      if (std::fabs(sample) > peak) peak = std::fabs(sample);
    }
  }
  return peak;
}

void logFailure(const ports::AudioTapFailure& failure) {
  switch (failure.step) {
    case TapStep::createTap:
      audioLog.error("CreateProcessTap failed: %d. Falling back to legacy probe.", failure.status);
      return;
    case TapStep::readTapIdentifier:
      audioLog.error("Couldn't read tap UID");
      return;
    case TapStep::createDevice:
      audioLog.error("CreateAggregateDevice failed: %d", failure.status);
      return;
    case TapStep::createInputProcedure:
      audioLog.error("CreateIOProcID failed: %d", failure.status);
      return;
    case TapStep::start:
      audioLog.error("AudioDeviceStart failed: %d", failure.status);
      return;
  }
}

}  // namespace

bool AudioActivityProbe::isAudioActive() {
  return tap_.canListen() ? isAudioPlaying(window, threshold) : legacyAudioActive();
}

bool AudioActivityProbe::isAudioPlaying(double windowSeconds, float threshold) {
  AtomicFloat loudest;
  const auto listened =
      tap_.listen(windowSeconds, [&loudest](auto buffers) { loudest.raiseTo(peakOf(buffers)); });
  if (!listened) {
    logFailure(listened.error());
    return legacyAudioActive();
  }

  const float peak = loudest.value();
  const bool audible = peak > threshold;
  audioLog.debug("Audio probe: peak=%f, threshold=%f, audible=%{bool}d", static_cast<double>(peak),
                 static_cast<double>(threshold), audible);
  return audible;
}

bool AudioActivityProbe::legacyAudioActive() {
  return tap_.isOutputRunning().value_or(false);
}

}  // namespace vorli

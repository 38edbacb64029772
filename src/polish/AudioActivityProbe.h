#pragma once

#include "ports/AudioOutputTap.h"

namespace vorli {

/// Detects whether sound is playing right now, so that a purge does not make it stutter. Main thread, which
/// is blocked while it listens.
class AudioActivityProbe {
 public:
  /// Listening time in seconds and threshold of every caller. The threshold, on samples of full scale 1.0, is
  /// about -34 dB.
  static constexpr double window = 0.15;
  static constexpr float threshold = 0.02F;

  explicit AudioActivityProbe(ports::AudioOutputTap& tap) : tap_(tap) {}

  /// The answer to act on: listens where the system supports it, otherwise checks whether the output is
  /// running.
  bool isAudioActive();

  /// True when a sample of the next `windowSeconds` is louder than `threshold`. If the tap fails, returns
  /// `legacyAudioActive`.
  bool isAudioPlaying(double windowSeconds, float threshold);

  /// True when the output device is running, even if it plays silence: errs on the side of sparing the sound.
  bool legacyAudioActive();

 private:
  ports::AudioOutputTap& tap_;
};

}  // namespace vorli

#pragma once

#include "ports/AudioOutputTap.h"

namespace vorli {

/// Tells whether sound is coming out right now, so that a purge does not make it stutter. Main thread, which
/// it blocks while it listens.
class AudioActivityProbe {
 public:
  /// What every caller listens with. The threshold, on samples of full scale 1.0, is about -34 dB.
  static constexpr double window = 0.15;
  static constexpr float threshold = 0.02F;

  explicit AudioActivityProbe(ports::AudioOutputTap& tap) : tap_(tap) {}

  /// The answer to act on: listens where the system can, else asks whether the output runs.
  bool isAudioActive();

  /// True when a sample of the next `windowSeconds` is louder than `threshold`. A tap that fails gives the
  /// answer of `legacyAudioActive`.
  bool isAudioPlaying(double windowSeconds, float threshold);

  /// True when the output device runs at all, were it with silence: errs towards sparing the sound.
  bool legacyAudioActive();

 private:
  ports::AudioOutputTap& tap_;
};

}  // namespace vorli

#pragma once

#include "base/Scheduler.h"
#include "ports/AudioOutputTap.h"

namespace vorli::linuxhost {

/// Records the monitor of the sound server's default output. An output that does not run, or is muted, is
/// silent without listening: that wakes no device and lights no recording indicator.
class AudioOutputTap final : public ports::AudioOutputTap {
 public:
  explicit AudioOutputTap(const Scheduler& clock) : clock_(clock) {}

  bool canListen() override;
  std::expected<void, ports::AudioTapFailure> listen(double windowSeconds, InputBlock input) override;
  std::optional<bool> isOutputRunning() override;

 private:
  const Scheduler& clock_;
};

}  // namespace vorli::linuxhost

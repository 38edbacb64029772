#pragma once

#include "base/Scheduler.h"
#include "ports/AudioOutputTap.h"

namespace vorli::linuxhost {

/// Records the monitor of the sound server's default output, at the level of the mix before the server's own
/// volume. An idle or muted output counts as silent without a recording, which would wake a device and show a
/// recording indicator.
class AudioOutputTap final : public ports::AudioOutputTap {
 public:
  explicit AudioOutputTap(const Scheduler& clock) : clock_(clock) {}

  bool canListen() override;
  [[nodiscard]] std::expected<void, ports::AudioTapFailure> listen(double windowSeconds,
                                                                   InputBlock input) override;
  std::optional<bool> isOutputRunning() override;

 private:
  const Scheduler& clock_;
};

}  // namespace vorli::linuxhost

#pragma once

#include "ports/AudioOutputTap.h"

namespace vorli::machost {

/// A private tap of the whole output mix, read through an aggregate device. Everything is created for one
/// call of `listen` and destroyed at its end.
class AudioOutputTap final : public ports::AudioOutputTap {
 public:
  /// True on macOS 14.2 and later.
  bool canListen() override;
  [[nodiscard]] std::expected<void, ports::AudioTapFailure> listen(double windowSeconds,
                                                                   InputBlock input) override;
  std::optional<bool> isOutputRunning() override;
};

}  // namespace vorli::machost

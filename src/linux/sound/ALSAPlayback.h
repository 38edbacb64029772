#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// True when any sound card is playing, as the kernel reports it; for a machine without a sound server. Empty
/// when no card can play. `root` is the folder in which the kernel lists its cards.
std::optional<bool> isALSAPlaybackRunning(const std::string& root = "/proc/asound");

}  // namespace vorli::linuxhost

#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Whether any sound card plays, by the kernel's own word, for a machine without a sound server. Empty when
/// there is no card that could. `root` is where the kernel lists its cards.
std::optional<bool> isALSAPlaybackRunning(const std::string& root = "/proc/asound");

}  // namespace vorli::linuxhost

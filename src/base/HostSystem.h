#pragma once

namespace vorli {

/// The system that the program was built for. Rules that differ between systems are data, one set for each,
/// and this picks the set; both sets are tested everywhere. The only condition on the platform outside its
/// folders.
enum class HostSystem { macOS, linuxDesktop };

#if defined(__APPLE__)
inline constexpr HostSystem hostSystem = HostSystem::macOS;
#else
inline constexpr HostSystem hostSystem = HostSystem::linuxDesktop;
#endif

}  // namespace vorli

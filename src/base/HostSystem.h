#pragma once

namespace vorli {

/// The system that the program was built for. Rules that differ between systems are data, with one set per
/// system; this selects the set. Both sets are tested on every system. This is the only platform conditional
/// outside the platform folders.
enum class HostSystem { macOS, linuxDesktop };

#if defined(__APPLE__)
inline constexpr HostSystem hostSystem = HostSystem::macOS;
#else
inline constexpr HostSystem hostSystem = HostSystem::linuxDesktop;
#endif

/// Chooses one of the two sets of `Set`: a struct that declares `static const Set macOS;` and
/// `static const Set linuxDesktop;` and whose source defines both.
template <typename Set>
const Set& ofSystem(HostSystem system) {
  return system == HostSystem::macOS ? Set::macOS : Set::linuxDesktop;
}

template <typename Set>
const Set& ofThisSystem() {
  return ofSystem<Set>(hostSystem);
}

}  // namespace vorli

#pragma once

#include <cstdint>
#include <wayland-util.h>

/// The parts of two Wayland protocols that describe the windows of other programs, as tables for the library
/// of the wire format. Unused messages are listed, too, because the place of a message is its number.
namespace vorli::linuxhost::wayland {

/// "zwlr_foreign_toplevel_manager_v1", version 1: compositors that are based on wlroots, and others.
extern const wl_interface foreignToplevelManager;
extern const wl_interface foreignToplevel;

/// "org_kde_plasma_window_management", versions 13 to 16: Plasma, for programs that it admits.
extern const wl_interface plasmaWindowManagement;
extern const wl_interface plasmaWindow;

enum class ForeignToplevelManagerEvent : std::uint32_t { toplevel, finished };
enum class ForeignToplevelEvent : std::uint32_t {
  title,
  appID,
  outputEntered,
  outputLeft,
  state,
  done,
  closed
};
enum class ForeignToplevelRequest : std::uint32_t { close = 5, destroy = 7 };
enum class ForeignToplevelState : std::uint32_t { maximised, minimised, activated, fullScreen };

enum class PlasmaWindowManagementRequest : std::uint32_t { windowByUUID = 2 };
enum class PlasmaWindowManagementEvent : std::uint32_t { showDesktopChanged = 0, windowWithUUID = 4 };
enum class PlasmaWindowRequest : std::uint32_t { close = 4, destroy = 7 };
enum class PlasmaWindowEvent : std::uint32_t {
  appIDChanged = 1,
  stateChanged = 2,
  unmapped = 5,
  initialState = 6,
  pidChanged = 10
};
/// Bits of a Plasma window's state.
constexpr std::uint32_t plasmaActive = 1U << 0;
constexpr std::uint32_t plasmaMinimised = 1U << 1;
constexpr std::uint32_t plasmaSkipsTaskBar = 1U << 12;

}  // namespace vorli::linuxhost::wayland

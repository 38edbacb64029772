#include "linux/applications/WaylandProtocols.h"

#include <array>

namespace vorli::linuxhost::wayland {
namespace {

constexpr int mostArguments = 5;

// Interface of each argument of a message; null for an argument that is not an object of these protocols.
using ArgumentTypes = std::array<const wl_interface*, mostArguments>;

ArgumentTypes plain{};
ArgumentTypes newForeignToplevel{&foreignToplevel};
ArgumentTypes newPlasmaWindow{&plasmaWindow};
ArgumentTypes parentPlasmaWindow{&plasmaWindow};

constexpr std::array foreignToplevelManagerRequests{wl_message{"stop", "", plain.data()}};
constexpr std::array foreignToplevelManagerEvents{
    wl_message{"toplevel", "n", newForeignToplevel.data()},
    wl_message{"finished", "", plain.data()},
};

constexpr std::array foreignToplevelRequests{
    wl_message{"set_maximized", "", plain.data()},      wl_message{"unset_maximized", "", plain.data()},
    wl_message{"set_minimized", "", plain.data()},      wl_message{"unset_minimized", "", plain.data()},
    wl_message{"activate", "o", plain.data()},          wl_message{"close", "", plain.data()},
    wl_message{"set_rectangle", "oiiii", plain.data()}, wl_message{"destroy", "", plain.data()},
};
constexpr std::array foreignToplevelEvents{
    wl_message{"title", "s", plain.data()},        wl_message{"app_id", "s", plain.data()},
    wl_message{"output_enter", "o", plain.data()}, wl_message{"output_leave", "o", plain.data()},
    wl_message{"state", "a", plain.data()},        wl_message{"done", "", plain.data()},
    wl_message{"closed", "", plain.data()},
};

constexpr std::array plasmaWindowManagementRequests{
    wl_message{"show_desktop", "u", plain.data()},
    wl_message{"get_window", "nu", newPlasmaWindow.data()},
    wl_message{"get_window_by_uuid", "ns", newPlasmaWindow.data()},
};
constexpr std::array plasmaWindowManagementEvents{
    wl_message{"show_desktop_changed", "u", plain.data()},
    wl_message{"window", "u", plain.data()},
    wl_message{"stacking_order_changed", "a", plain.data()},
    wl_message{"stacking_order_uuid_changed", "s", plain.data()},
    wl_message{"window_with_uuid", "us", plain.data()},
};

constexpr std::array plasmaWindowRequests{
    wl_message{"set_state", "uu", plain.data()},
    wl_message{"set_virtual_desktop", "u", plain.data()},
    wl_message{"set_minimized_geometry", "ouuuu", plain.data()},
    wl_message{"unset_minimized_geometry", "o", plain.data()},
    wl_message{"close", "", plain.data()},
    wl_message{"request_move", "", plain.data()},
    wl_message{"request_resize", "", plain.data()},
    wl_message{"destroy", "", plain.data()},
};
constexpr std::array plasmaWindowEvents{
    wl_message{"title_changed", "s", plain.data()},
    wl_message{"app_id_changed", "s", plain.data()},
    wl_message{"state_changed", "u", plain.data()},
    wl_message{"virtual_desktop_changed", "i", plain.data()},
    wl_message{"themed_icon_name_changed", "s", plain.data()},
    wl_message{"unmapped", "", plain.data()},
    wl_message{"initial_state", "", plain.data()},
    wl_message{"parent_window", "?o", parentPlasmaWindow.data()},
    wl_message{"geometry", "iiuu", plain.data()},
    wl_message{"icon_changed", "", plain.data()},
    wl_message{"pid_changed", "u", plain.data()},
    wl_message{"virtual_desktop_entered", "s", plain.data()},
    wl_message{"virtual_desktop_left", "s", plain.data()},
    wl_message{"application_menu", "ss", plain.data()},
    wl_message{"activity_entered", "s", plain.data()},
    wl_message{"activity_left", "s", plain.data()},
    wl_message{"resource_name_changed", "s", plain.data()},
};

template <std::size_t Requests, std::size_t Events>
constexpr wl_interface interfaceOf(const char* name, int version,
                                   const std::array<wl_message, Requests>& requests,
                                   const std::array<wl_message, Events>& events) {
  return {name,         version, static_cast<int>(Requests), requests.data(), static_cast<int>(Events),
          events.data()};
}

}  // namespace

constexpr wl_interface foreignToplevelManager = interfaceOf(
    "zwlr_foreign_toplevel_manager_v1", 1, foreignToplevelManagerRequests, foreignToplevelManagerEvents);
constexpr wl_interface foreignToplevel =
    interfaceOf("zwlr_foreign_toplevel_handle_v1", 1, foreignToplevelRequests, foreignToplevelEvents);
constexpr wl_interface plasmaWindowManagement = interfaceOf(
    "org_kde_plasma_window_management", 16, plasmaWindowManagementRequests, plasmaWindowManagementEvents);
constexpr wl_interface plasmaWindow =
    interfaceOf("org_kde_plasma_window", 16, plasmaWindowRequests, plasmaWindowEvents);

}  // namespace vorli::linuxhost::wayland

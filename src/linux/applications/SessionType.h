#pragma once

#include <string>

namespace vorli::linuxhost {

/// True in a Wayland session, even if this program runs through XWayland. Native windows of other programs
/// are invisible there, so a process without an X11 window may still have a window.
bool isWaylandSession();

/// Path of the socket at which the compositor of a Wayland session listens; empty in another session.
std::string compositorSocket();

}  // namespace vorli::linuxhost

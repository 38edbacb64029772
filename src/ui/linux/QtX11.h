#pragma once

#include <QRect>
#include <optional>
#include <xcb/xcb.h>

namespace vorli::ui {

// The X server over Qt's own connection to it. Main thread.

/// Null on a platform other than X11, where nothing of the rest must be called.
xcb_connection_t* qtConnection();

xcb_window_t rootWindow(xcb_connection_t* connection);

/// XCB_ATOM_NONE when the server does not answer. It is asked once for each name, which must live on.
xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name);

/// Where the window is on the desktop, in native pixels.
std::optional<QRect> rectangleOf(xcb_connection_t* connection, xcb_window_t window);

}  // namespace vorli::ui

#pragma once

#include <QRect>
#include <optional>
#include <xcb/xcb.h>

namespace vorli::ui {

// Access to the X server over Qt's own connection. Main thread.

/// Null on platforms other than X11, where none of the other functions may be called.
xcb_connection_t* qtConnection();

xcb_window_t rootWindow(xcb_connection_t* connection);

/// Returns XCB_ATOM_NONE when the server does not answer. Atoms are cached; `name` must stay valid until the
/// program ends.
xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name);

/// Rectangle of the window on the desktop, in native pixels.
std::optional<QRect> rectangleOf(xcb_connection_t* connection, xcb_window_t window);

}  // namespace vorli::ui

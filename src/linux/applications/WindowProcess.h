#pragma once

#include <cstdint>
#include <xcb/res.h>

namespace vorli::linuxhost {

/// Asks the X server which process a window belongs to; the client's own claim may be missing or false.
xcb_res_query_client_ids_cookie_t askForProcess(xcb_connection_t* connection, std::uint32_t window);

/// Waits for the answer. Returns 0 for a window that is gone, or whose client the server does not know. A
/// window of another machine belongs to the local process that forwards it.
std::int32_t processFrom(xcb_connection_t* connection, xcb_res_query_client_ids_cookie_t question);

}  // namespace vorli::linuxhost

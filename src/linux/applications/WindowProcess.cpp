#include "linux/applications/WindowProcess.h"

#include "linux/X11Reply.h"

namespace vorli::linuxhost {

xcb_res_query_client_ids_cookie_t askForProcess(xcb_connection_t* connection, std::uint32_t window) {
  // A request of an extension that the server lacks would end the connection.
  const auto* extension = xcb_get_extension_data(connection, &xcb_res_id);
  if (!extension || !extension->present) return {};
  const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  return xcb_res_query_client_ids(connection, 1, &wanted);
}

std::int32_t processFrom(xcb_connection_t* connection, xcb_res_query_client_ids_cookie_t question) {
  const X11Reply<xcb_res_query_client_ids_reply_t> reply(
      xcb_res_query_client_ids_reply(connection, question, nullptr));
  if (!reply) return 0;
  auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
  for (; ids.rem; xcb_res_client_id_value_next(&ids)) {
    const bool isPID = (ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
    if (isPID && xcb_res_client_id_value_value_length(ids.data) > 0) {
      return static_cast<std::int32_t>(*xcb_res_client_id_value_value(ids.data));
    }
  }
  return 0;
}

}  // namespace vorli::linuxhost

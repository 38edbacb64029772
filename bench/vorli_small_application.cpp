// vorli_small_application CLASS window|icon: shows a window of that class, or asks the X11 tray to show an
// icon. Ends when its input ends.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

constexpr int exitWrongCall = 64;

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  auto* const reply = xcb_intern_atom_reply(connection, cookie, nullptr);
  const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  std::free(reply);
  return atom;
}

xcb_window_t createWindow(xcb_connection_t* connection, const xcb_screen_t& screen, const std::string& name) {
  const xcb_window_t window = xcb_generate_id(connection);
  const std::uint32_t background = screen.white_pixel;
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen.root, 0, 0, 200, 120, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, XCB_CW_BACK_PIXEL, &background);
  const std::string classes = name + '\0' + name + '\0';
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(classes.size()), classes.data());
  return window;
}

// False without a tray.
bool askTray(xcb_connection_t* connection, xcb_window_t icon) {
  const xcb_atom_t info = atomOf(connection, "_XEMBED_INFO");
  constexpr std::array<std::uint32_t, 2> versionAndFlags{0, 1};  // the tray maps the window
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, icon, info, info, 32, versionAndFlags.size(),
                      versionAndFlags.data());
  const auto asked = xcb_get_selection_owner(connection, atomOf(connection, "_NET_SYSTEM_TRAY_S0"));
  auto* const reply = xcb_get_selection_owner_reply(connection, asked, nullptr);
  const xcb_window_t tray = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
  std::free(reply);
  if (tray == XCB_WINDOW_NONE) return false;
  constexpr std::uint32_t dock = 0;
  xcb_client_message_event_t request{};
  request.response_type = XCB_CLIENT_MESSAGE;
  request.format = 32;
  request.window = tray;
  request.type = atomOf(connection, "_NET_SYSTEM_TRAY_OPCODE");
  request.data.data32[0] = XCB_CURRENT_TIME;
  request.data.data32[1] = dock;
  request.data.data32[2] = icon;
  xcb_send_event(connection, 0, tray, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view kind = argc == 3 ? argv[2] : "";
  if (kind != "window" && kind != "icon") {
    std::fprintf(stderr, "vorli_small_application: CLASS window|icon\n");
    return exitWrongCall;
  }
  auto* const connection = xcb_connect(nullptr, nullptr);
  bool isShown = xcb_connection_has_error(connection) == 0;
  if (isShown) {
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto window = createWindow(connection, screen, argv[1]);
    if (kind == "window") {
      xcb_map_window(connection, window);
    } else {
      isShown = askTray(connection, window);
    }
    xcb_flush(connection);
  }
  char byte;
  while (isShown && read(STDIN_FILENO, &byte, 1) > 0) continue;
  xcb_disconnect(connection);
  return isShown ? EXIT_SUCCESS : EXIT_FAILURE;
}

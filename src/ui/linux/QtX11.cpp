#include "ui/linux/QtX11.h"

#include "linux/X11Reply.h"

#include <QGuiApplication>
#include <map>
#include <string_view>

namespace vorli::ui {

xcb_connection_t* qtConnection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
  // Atoms do not change while the server runs, and this program does not outlive the server.
  static std::map<std::string_view, xcb_atom_t> known;
  const std::string_view text(name);
  if (const auto found = known.find(text); found != known.end()) return found->second;
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(text.size()), name);
  const linuxhost::X11Reply<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(connection, cookie, nullptr));
  if (!reply) return XCB_ATOM_NONE;
  return known.emplace(text, reply->atom).first->second;
}

std::optional<QRect> rectangleOf(xcb_connection_t* connection, xcb_window_t window) {
  const auto sizeCookie = xcb_get_geometry(connection, window);
  const auto placeCookie = xcb_translate_coordinates(connection, window, rootWindow(connection), 0, 0);
  const linuxhost::X11Reply<xcb_get_geometry_reply_t> size(
      xcb_get_geometry_reply(connection, sizeCookie, nullptr));
  const linuxhost::X11Reply<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
  if (!size || !place) return std::nullopt;
  return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

}  // namespace vorli::ui

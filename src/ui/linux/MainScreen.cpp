#include "ui/linux/MainScreen.h"

#include "ui/linux/ClickAnchor.h"

#include <QGuiApplication>
#include <QScreen>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace vorli::ui {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

xcb_connection_t* qtConnection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootOf(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_window_t activeWindow(xcb_connection_t* connection) {
  const auto cookie = xcb_get_property(connection, 0, rootOf(connection), atomNamed("_NET_ACTIVE_WINDOW"),
                                       XCB_ATOM_WINDOW, 0, 1);
  const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(xcb_window_t)))
    return XCB_WINDOW_NONE;
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

// The middle of a window, in native pixels.
std::optional<QPoint> middleOf(xcb_connection_t* connection, xcb_window_t window) {
  const auto sizeCookie = xcb_get_geometry(connection, window);
  const auto placeCookie = xcb_translate_coordinates(connection, window, rootOf(connection), 0, 0);
  const Owned<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection, sizeCookie, nullptr));
  const Owned<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
  if (!size || !place) return std::nullopt;
  return QPoint(place->dst_x + size->width / 2, place->dst_y + size->height / 2);
}

}  // namespace

std::optional<QRect> mainScreenGeometry() {
  auto* connection = qtConnection();
  const auto window = connection ? activeWindow(connection) : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  const auto middle = window == XCB_WINDOW_NONE ? std::nullopt : middleOf(connection, window);
  if (middle) {
    QList<ScreenPlace> places;
    for (const auto* screen : QGuiApplication::screens())
      places.append({screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()});
    const auto point = logicalPoint(*middle, places);
    for (const auto& place : places) {
      if (point && place.geometry.contains(*point)) return place.geometry;
    }
  }
  const auto* primary = QGuiApplication::primaryScreen();
  if (!primary || primary->geometry().isEmpty()) return std::nullopt;
  return primary->geometry();
}

std::uint32_t topLevelAncestor(std::uint32_t window) {
  auto* connection = qtConnection();
  if (!connection) return 0;
  while (window != XCB_WINDOW_NONE) {
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree) return 0;
    if (tree->parent == tree->root) return window;
    window = tree->parent;
  }
  return 0;
}

std::uint32_t atomNamed(const char* name) {
  auto* connection = qtConnection();
  if (!connection) return 0;
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : 0;
}

}  // namespace vorli::ui

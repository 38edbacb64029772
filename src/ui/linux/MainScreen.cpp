#include "ui/linux/MainScreen.h"

#include "linux/X11Reply.h"
#include "ui/kit/ScreenPlaces.h"
#include "ui/linux/QtX11.h"
#include "ui/status/ClickAnchor.h"

#include <QGuiApplication>
#include <QScreen>

namespace vorli::ui {
namespace {

xcb_window_t activeWindow(xcb_connection_t* connection) {
  const auto cookie = xcb_get_property(connection, 0, rootWindow(connection),
                                       atomNamed(connection, "_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1);
  const linuxhost::X11Reply<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(xcb_window_t)))
    return XCB_WINDOW_NONE;
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

}  // namespace

std::optional<QRect> mainScreenGeometry() {
  auto* connection = qtConnection();
  const auto window = connection ? activeWindow(connection) : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  const auto place = window == XCB_WINDOW_NONE ? std::nullopt : rectangleOf(connection, window);
  if (place) {
    const auto screens = screenPlaces();
    const auto middle = logicalPoint(place->center(), screens);
    for (const auto& screen : screens) {
      if (middle && screen.geometry.contains(*middle)) return screen.geometry;
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
    const linuxhost::X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree) return 0;
    if (tree->parent == tree->root) return window;
    window = tree->parent;
  }
  return 0;
}

}  // namespace vorli::ui

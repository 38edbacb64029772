#include "ui/linux/X11Window.h"

#include "linux/X11Reply.h"
#include "ui/linux/QtX11.h"

#include <QWindow>
#include <algorithm>
#include <array>
#include <span>
#include <vector>
#include <xcb/shape.h>

namespace vorli::ui {
namespace {

constexpr std::uint32_t mostWindows = 1024, mostTypes = 16;

// Reads atoms or windows; both are 32-bit numbers.
std::vector<std::uint32_t> numbersOf(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
  const linuxhost::X11Reply<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + xcb_get_property_value_length(reply.get()) / static_cast<int>(sizeof *first)};
}

xcb_get_property_cookie_t ask(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                              std::uint32_t most) {
  return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, most);
}

// The managed windows of type dock.
std::vector<xcb_window_t> docks(xcb_connection_t* connection) {
  const auto list = atomNamed(connection, "_NET_CLIENT_LIST"),
             type = atomNamed(connection, "_NET_WM_WINDOW_TYPE");
  const auto dock = atomNamed(connection, "_NET_WM_WINDOW_TYPE_DOCK");
  const auto windows = numbersOf(connection, ask(connection, rootWindow(connection), list, mostWindows));
  // Sends all requests first: one round trip instead of one for each window.
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const auto window : windows) cookies.push_back(ask(connection, window, type, mostTypes));
  std::vector<xcb_window_t> found;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto types = numbersOf(connection, cookies[i]);
    if (std::find(types.begin(), types.end(), dock) != types.end()) found.push_back(windows[i]);
  }
  return found;
}

}  // namespace

void keepOutOfTaskLists(QWindow& window) {
  auto* connection = qtConnection();
  if (!connection) return;
  const std::array states{atomNamed(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                          atomNamed(connection, "_NET_WM_STATE_SKIP_PAGER"),
                          atomNamed(connection, "_NET_WM_STATE_ABOVE")};
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                      atomNamed(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(),
                      states.data());
}

void limitInput(QWindow& window, const QRect& area) {
  auto* connection = qtConnection();
  if (!connection) return;
  const xcb_rectangle_t rectangle{static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()),
                                  static_cast<std::uint16_t>(area.width()),
                                  static_cast<std::uint16_t>(area.height())};
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       static_cast<xcb_window_t>(window.winId()), 0, 0, 1, &rectangle);
  xcb_flush(connection);
}

bool isButtonHeld() {
  auto* connection = qtConnection();
  if (!connection) return false;
  const auto root = rootWindow(connection);
  const linuxhost::X11Reply<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
  constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
  return pointer && (pointer->mask & buttons) != 0;
}

bool isOnOtherWorkspace(QWindow& window) {
  auto* connection = qtConnection();
  if (!connection) return false;
  const auto ofWindow =
      ask(connection, static_cast<xcb_window_t>(window.winId()), atomNamed(connection, "_NET_WM_DESKTOP"), 1);
  const auto ofUser =
      ask(connection, rootWindow(connection), atomNamed(connection, "_NET_CURRENT_DESKTOP"), 1);
  const auto own = numbersOf(connection, ofWindow), current = numbersOf(connection, ofUser);
  constexpr std::uint32_t everyWorkspace = 0xFFFFFFFF;
  return !own.empty() && !current.empty() && own != current && own.front() != everyWorkspace;
}

std::optional<QRect> panelAt(QPoint point) {
  auto* connection = qtConnection();
  if (!connection) return std::nullopt;
  for (const auto dock : docks(connection)) {
    const auto rectangle = rectangleOf(connection, dock);
    if (rectangle && rectangle->contains(point)) return rectangle;
  }
  return std::nullopt;
}

}  // namespace vorli::ui

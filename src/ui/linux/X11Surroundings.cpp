#include "ui/linux/X11Surroundings.h"

#include <QGuiApplication>
#include <QMargins>
#include <QWindow>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace vorli::ui {
namespace {

xcb_connection_t* qtConnection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomOf(xcb_connection_t* connection, const char* name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace

Appearance X11Surroundings::appearance() const {
  return desktop_.isDark() ? Appearance::dark : Appearance::light;
}

Compositing X11Surroundings::compositing() const {
  return selections_.isManaged(ManagerSelections::Selection::compositor) ? Compositing::present
                                                                         : Compositing::absent;
}

void X11Surroundings::setShadowMargins(QWindow& window, const QMargins& shadow) const {
  auto* connection = qtConnection();
  if (!connection) return;
  const double ratio = window.devicePixelRatio();
  const auto pixels = [ratio](int points) { return static_cast<std::uint32_t>(points * ratio); };
  const std::array extents{pixels(shadow.left()), pixels(shadow.right()), pixels(shadow.top()),
                           pixels(shadow.bottom())};
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                      atomOf(connection, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, extents.size(),
                      extents.data());
}

void X11Surroundings::bringToFront(QWindow& window) const {
  window.raise();
  window.requestActivate();
  auto* connection = qtConnection();
  if (!connection) return;
  // Window managers may refuse the wish of a program that was not clicked on, as Qt states it; what a pager
  // asks for they do.
  constexpr std::uint32_t fromPager = 2;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = static_cast<xcb_window_t>(window.winId());
  message.type = atomOf(connection, "_NET_ACTIVE_WINDOW");
  message.data.data32[0] = fromPager;
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_send_event(connection, 0, root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

}  // namespace vorli::ui

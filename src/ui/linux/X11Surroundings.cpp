#include "ui/linux/X11Surroundings.h"

#include "ui/linux/QtX11.h"

#include <QMargins>
#include <QWindow>
#include <array>

namespace vorli::ui {

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
                      atomNamed(connection, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, extents.size(),
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
  message.type = atomNamed(connection, "_NET_ACTIVE_WINDOW");
  message.data.data32[0] = fromPager;
  xcb_send_event(connection, 0, rootWindow(connection),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

}  // namespace vorli::ui

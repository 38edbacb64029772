#include "ui/linux/X11Surroundings.h"

#include "formats/XSettings.h"
#include "ui/kit/QtText.h"
#include "ui/linux/QtX11.h"
#include "ui/linux/X11Window.h"

#include <QMargins>
#include <QWindow>
#include <array>
#include <malloc.h>
#include <utility>

namespace vorli::ui {

Appearance X11Surroundings::appearance() const {
  return desktop_.isDark() ? Appearance::dark : Appearance::light;
}

Subscription X11Surroundings::subscribeToAppearance(std::function<void()> handler) const {
  return desktop_.subscribe(std::move(handler));
}

Compositing X11Surroundings::compositing() const {
  return selections_.isManaged(ManagerSelections::Selection::compositor) ? Compositing::present
                                                                         : Compositing::absent;
}

CloseButtonSide X11Surroundings::closeButtonSide() const {
  const auto layout = formats::xSettingsText(
      bytesOf(selections_.published(ManagerSelections::Selection::settings)), "Gtk/DecorationLayout");
  return layout ? closeButtonSideOf(*layout) : CloseButtonSide::right;
}

CloseButtonSide closeButtonSideOf(std::string_view layout) {
  const auto left = layout.substr(0, layout.find(':'));
  return left.find("close") == std::string_view::npos ? CloseButtonSide::right : CloseButtonSide::left;
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
  // Window managers may refuse Qt's request for a program that was not clicked on; they obey a pager's.
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

bool X11Surroundings::isOnCurrentWorkspace(QWindow& window) const {
  return !isOnOtherWorkspace(window);
}

// A window leaves several megabytes of free blocks. By itself, the allocator returns only those at the end of
// the heap, and one small live block there is enough to keep them all.
void X11Surroundings::windowDestroyed() const {
  ::malloc_trim(0);
}

}  // namespace vorli::ui

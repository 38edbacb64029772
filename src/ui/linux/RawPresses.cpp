#include "ui/linux/RawPresses.h"

#include "linux/X11Reply.h"

#include <utility>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace vorli::ui {
namespace {

constexpr unsigned leftButton = 1, rightButton = 3;

}  // namespace

RawPresses::RawPresses(Handler handler) : handler_(std::move(handler)) {}

RawPresses::~RawPresses() {
  notifier_.reset();
  if (connection_) xcb_disconnect(connection_);
}

void RawPresses::prepare() {
  if (!connection_) connect();
}

void RawPresses::listen() {
  prepare();
  if (!connection_ || listens_) return;
  listens_ = true;
  select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
}

void RawPresses::stop() {
  if (!std::exchange(listens_, false)) return;
  select(0);
}

void RawPresses::connect() {
  auto* connection = xcb_connect(nullptr, nullptr);
  const auto giveUp = [&] { xcb_disconnect(connection); };
  if (xcb_connection_has_error(connection)) return giveUp();
  const auto cookie = xcb_input_xi_query_version(connection, 2, 2);  // required before any other request
  const linuxhost::X11Reply<xcb_input_xi_query_version_reply_t> version(
      xcb_input_xi_query_version_reply(connection, cookie, nullptr));
  if (!version) return giveUp();
  connection_ = connection;
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { process(); });
}

void RawPresses::select(std::uint32_t events) {
  const struct {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask;
  } request{.mask = events};
  selection_ = xcb_input_xi_select_events(connection_, root_, 1, &request.head).sequence;
  xcb_flush(connection_);
}

// Calls the handler once for all presses that have come. Asking for the place may pull further ones into the
// queue, and the notifier does not report those.
void RawPresses::process() {
  while (takePresses()) {
    if (const auto place = pointer()) handler_(*place);
  }
  if (xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
}

bool RawPresses::takePresses() {
  bool pressed = false;
  while (takePress()) pressed = true;
  return pressed;
}

// Returns true for a press. Drops other events, and events of an earlier selection, on the way to it.
bool RawPresses::takePress() {
  while (const linuxhost::X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    if ((event->response_type & 0x7F) != XCB_GE_GENERIC) continue;
    if (static_cast<std::int32_t>(event->full_sequence - selection_) < 0) continue;
    const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event.get());
    if (generic->event_type != XCB_INPUT_RAW_BUTTON_PRESS) continue;
    const auto* press = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event.get());
    if (press->detail == leftButton || press->detail == rightButton) return true;
  }
  return false;
}

// Asks for the pointer's position, because a raw event has none.
std::optional<QPoint> RawPresses::pointer() {
  const linuxhost::X11Reply<xcb_query_pointer_reply_t> reply(
      xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
  if (!reply) return std::nullopt;
  return QPoint(reply->root_x, reply->root_y);
}

}  // namespace vorli::ui

#include "ui/linux/ManagerSelections.h"

#include "linux/X11Reply.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

namespace vorli::ui {
namespace {

xcb_window_t rootOfScreen(xcb_connection_t* connection, int screenNumber) {
  auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screenNumber && screen.rem > 1; ++i) xcb_screen_next(&screen);
  return screen.data->root;
}

}  // namespace

ManagerSelections::ManagerSelections() {
  int screenNumber = 0;
  connection_ = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection_)) {
    xcb_disconnect(connection_);
    connection_ = nullptr;
    return;
  }
  const auto suffix = "_S" + std::to_string(screenNumber);
  states_[0].selection = intern("_NET_SYSTEM_TRAY" + suffix);
  states_[0].property = intern("_NET_SYSTEM_TRAY_COLORS");
  states_[1].selection = intern("_XSETTINGS" + suffix);
  states_[1].property = intern("_XSETTINGS_SETTINGS");
  states_[2].selection = intern("_NET_WM_CM" + suffix);
  if (!watchOwners(rootOfScreen(connection_, screenNumber))) return;
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { process(); });
  refreshAll();
  process();  // events may have been read with the replies, and the notifier does not report those
}

ManagerSelections::~ManagerSelections() {
  notifier_.reset();
  if (connection_) xcb_disconnect(connection_);
}

bool ManagerSelections::watchOwners(std::uint32_t root) {
  const auto* extension = xcb_get_extension_data(connection_, &xcb_xfixes_id);
  if (!extension || !extension->present) return false;
  firstFixesEvent_ = extension->first_event;
  const auto cookie = xcb_xfixes_query_version(connection_, 2, 0);  // required before any other request
  const linuxhost::X11Reply<xcb_xfixes_query_version_reply_t> version(
      xcb_xfixes_query_version_reply(connection_, cookie, nullptr));
  for (const auto& state : states_) {
    xcb_xfixes_select_selection_input(connection_, root, state.selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  }
  return version != nullptr;
}

std::uint32_t ManagerSelections::intern(const std::string& name) {
  const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const linuxhost::X11Reply<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(connection_, cookie, nullptr));
  return reply ? reply->atom : 0;
}

std::uint32_t ManagerSelections::selectionOwner(const State& state) {
  const auto cookie = xcb_get_selection_owner(connection_, state.selection);
  const linuxhost::X11Reply<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(connection_, cookie, nullptr));
  return reply ? reply->owner : 0;
}

bool ManagerSelections::refresh(State& state) {
  State now{state.selection, state.property, selectionOwner(state), {}};
  if (now.owner != 0 && now.property != 0) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, now.owner, XCB_CW_EVENT_MASK, &mask);
    constexpr std::uint32_t mostWords = 16384;
    const auto cookie =
        xcb_get_property(connection_, 0, now.owner, state.property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords);
    const linuxhost::X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_, cookie, nullptr));
    if (reply) {
      now.published = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                 xcb_get_property_value_length(reply.get()));
    }
  }
  const bool changed = now.owner != state.owner || now.published != state.published;
  state = std::move(now);
  return changed;
}

bool ManagerSelections::refreshAll() {
  bool changed = false;
  for (auto& state : states_) changed = refresh(state) || changed;
  return changed;
}

bool ManagerSelections::readEvents() {
  bool relevant = false;
  while (const linuxhost::X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    const int type = event->response_type & 0x7f;
    relevant |= type == firstFixesEvent_ + XCB_XFIXES_SELECTION_NOTIFY;
    if (type != XCB_PROPERTY_NOTIFY) continue;
    const auto atom = reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom;
    for (const auto& state : states_) relevant |= atom == state.property;
  }
  return relevant;
}

void ManagerSelections::process() {
  bool changed = false;
  while (readEvents()) changed = refreshAll() || changed;
  if (xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
  if (changed) changed_.deliver();
}

}  // namespace vorli::ui

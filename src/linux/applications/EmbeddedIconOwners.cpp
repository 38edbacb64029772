#include "linux/applications/EmbeddedIconOwners.h"

#include "linux/X11Reply.h"
#include "linux/applications/WindowProcess.h"

#include <QSocketNotifier>
#include <utility>
#include <xcb/xcb.h>

namespace vorli::linuxhost {
namespace {

constexpr double gatheringSeconds = 1.0;

}  // namespace

EmbeddedIconOwners::EmbeddedIconOwners(Scheduler& scheduler, std::function<void(std::int32_t)> ownerSeen)
    : scheduler_(scheduler), ownerSeen_(std::move(ownerSeen)) {
  int screenNumber = 0;
  connection_ = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection_)) return;
  const auto* setup = xcb_get_setup(connection_);
  idMask_ = setup->resource_id_mask;
  auto screens = xcb_setup_roots_iterator(setup);
  for (int i = 0; i < screenNumber && screens.rem > 1; ++i) xcb_screen_next(&screens);
  root_ = screens.data->root;
  traySelection_ = intern("_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber));
  iconMark_ = intern("_XEMBED_INFO");

  const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
  xcb_flush(connection_);
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { lookSoon(); });
  lookSoon();
}

EmbeddedIconOwners::~EmbeddedIconOwners() {
  scheduler_.cancel(timer_);
  notifier_.reset();
  xcb_disconnect(connection_);
}

std::uint32_t EmbeddedIconOwners::intern(const std::string& name) {
  const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::uint32_t EmbeddedIconOwners::currentTrayWindow() {
  const X11Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection_, xcb_get_selection_owner(connection_, traySelection_), nullptr));
  return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

// Leaves the events in the socket until then: a window that the user drags causes hundreds of them.
void EmbeddedIconOwners::lookSoon() {
  notifier_->setEnabled(false);
  timer_ = scheduler_.after(
      gatheringSeconds, [this] { look(); }, Scheduler::Precision::coarse);
}

void EmbeddedIconOwners::look() {
  auto places = std::exchange(isFirstLook_, false) ? everyPlace() : std::vector<Place>();
  takeMoves(places);
  while (!places.empty()) {
    report(std::exchange(places, {}));
    // Reading the replies may have pulled further events into the queue, and the socket will not wake us for
    // these.
    takeMoves(places);
  }
  notifier_->setEnabled(!xcb_connection_has_error(connection_));
}

// One round trip for each level of the tree of windows.
std::vector<EmbeddedIconOwners::Place> EmbeddedIconOwners::everyPlace() {
  std::vector<Place> places;
  std::vector<std::uint32_t> level;
  if (currentTrayWindow() != XCB_WINDOW_NONE) level.push_back(root_);
  while (!level.empty()) {
    std::vector<xcb_query_tree_cookie_t> asked;
    for (const auto parent : level) asked.push_back(xcb_query_tree(connection_, parent));
    std::vector<std::uint32_t> below;
    for (std::size_t i = 0; i < level.size(); ++i) {
      const X11Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection_, asked[i], nullptr));
      const int count = tree ? xcb_query_tree_children_length(tree.get()) : 0;
      for (int j = 0; j < count; ++j) {
        below.push_back(xcb_query_tree_children(tree.get())[j]);
        places.push_back({below.back(), level[i]});
      }
    }
    level = std::move(below);
  }
  return places;
}

void EmbeddedIconOwners::takeMoves(std::vector<Place>& places) {
  while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    if ((event->response_type & 0x7f) != XCB_REPARENT_NOTIFY) continue;
    const auto* move = reinterpret_cast<const xcb_reparent_notify_event_t*>(event.get());
    places.push_back({move->window, move->parent});
  }
}

// Asks for the mark that every icon has: a window manager that shows the tray itself also has the windows of
// other programs inside of its own.
void EmbeddedIconOwners::report(const std::vector<Place>& places) {
  const auto guests = guestsOfTray(places, currentTrayWindow(), idMask_);
  struct Questions {
    xcb_get_property_cookie_t mark;
    xcb_res_query_client_ids_cookie_t process;
  };
  std::vector<Questions> asked;
  for (const auto window : guests) {
    asked.push_back({xcb_get_property(connection_, 0, window, iconMark_, XCB_GET_PROPERTY_TYPE_ANY, 0, 0),
                     askForProcess(connection_, window)});
  }
  for (const auto& questions : asked) {
    const X11Reply<xcb_get_property_reply_t> mark(
        xcb_get_property_reply(connection_, questions.mark, nullptr));
    const auto pid = processFrom(connection_, questions.process);
    if (mark && mark->type != XCB_ATOM_NONE && pid > 0) ownerSeen_(pid);
  }
}

std::vector<std::uint32_t> EmbeddedIconOwners::guestsOfTray(const std::vector<Place>& places,
                                                            std::uint32_t trayWindow, std::uint32_t idMask) {
  std::vector<std::uint32_t> guests;
  if (trayWindow == 0) return guests;
  const auto isTrays = [trayWindow, idMask](std::uint32_t window) {
    return (window & ~idMask) == (trayWindow & ~idMask);
  };
  for (const auto& place : places) {
    if (isTrays(place.parent) && !isTrays(place.window)) guests.push_back(place.window);
  }
  return guests;
}

}  // namespace vorli::linuxhost

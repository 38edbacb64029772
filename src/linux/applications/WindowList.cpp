#include "linux/applications/WindowList.h"

#include "linux/X11Reply.h"
#include "linux/applications/WindowProcess.h"

#include <QMetaObject>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cstring>
#include <unistd.h>
#include <xcb/xcb.h>

namespace vorli::linuxhost {

namespace {

using Property = X11Reply<xcb_get_property_reply_t>;

constexpr std::uint32_t longestPropertyWords = 1024;
constexpr std::uint32_t everyDesktop = 0xFFFFFFFF;

std::string text(const Property& property) {
  if (!property || property->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(property.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

std::vector<std::uint32_t> words(const Property& property) {
  if (!property || property->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
  return {first, first + xcb_get_property_value_length(property.get()) / 4};
}

std::optional<std::uint32_t> firstWord(const Property& property) {
  const auto all = words(property);
  return all.empty() ? std::nullopt : std::optional(all.front());
}

std::string hostName() {
  std::array<char, 256> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

// A window that is forwarded from another machine also has a local client, which forwards it. A machine name
// that does not match proves nothing, since the name can change while a program runs; in that case both
// sources must agree.
std::int32_t processBehind(std::int32_t fromServer, std::int32_t claimed, bool isOwnMachine) {
  if (!isOwnMachine) return fromServer == claimed ? fromServer : 0;
  return fromServer > 0 ? fromServer : claimed;
}

}  // namespace

struct WindowList::Atoms {
  xcb_atom_t clientList, activeWindow, currentDesktop, closeWindow, pid, clientMachine, gtkApplicationID,
      gtkUniqueBusName, gtkObjectPath, kdeDesktopFile, windowType, typeDock, typeDesktop, state, stateHidden,
      stateShaded, windowDesktop, showingDesktop, supported, protocols, deleteWindow;

  explicit Atoms(xcb_connection_t* connection) {
    const std::array<std::pair<xcb_atom_t*, const char*>, 21> wanted{{
        {&clientList, "_NET_CLIENT_LIST"},
        {&activeWindow, "_NET_ACTIVE_WINDOW"},
        {&currentDesktop, "_NET_CURRENT_DESKTOP"},
        {&closeWindow, "_NET_CLOSE_WINDOW"},
        {&pid, "_NET_WM_PID"},
        {&clientMachine, "WM_CLIENT_MACHINE"},
        {&gtkApplicationID, "_GTK_APPLICATION_ID"},
        {&gtkUniqueBusName, "_GTK_UNIQUE_BUS_NAME"},
        {&gtkObjectPath, "_GTK_APPLICATION_OBJECT_PATH"},
        {&kdeDesktopFile, "_KDE_NET_WM_DESKTOP_FILE"},
        {&windowType, "_NET_WM_WINDOW_TYPE"},
        {&typeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
        {&typeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
        {&state, "_NET_WM_STATE"},
        {&stateHidden, "_NET_WM_STATE_HIDDEN"},
        {&stateShaded, "_NET_WM_STATE_SHADED"},
        {&windowDesktop, "_NET_WM_DESKTOP"},
        {&showingDesktop, "_NET_SHOWING_DESKTOP"},
        {&supported, "_NET_SUPPORTED"},
        {&protocols, "WM_PROTOCOLS"},
        {&deleteWindow, "WM_DELETE_WINDOW"},
    }};
    std::array<xcb_intern_atom_cookie_t, wanted.size()> cookies;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      cookies[i] = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(wanted[i].second)),
                                   wanted[i].second);
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookies[i], nullptr));
      *wanted[i].first = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
  }
};

namespace {

xcb_get_property_cookie_t ask(xcb_connection_t* connection, std::uint32_t window, xcb_atom_t property) {
  return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                          longestPropertyWords);
}

Property answer(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
  return Property(xcb_get_property_reply(connection, cookie, nullptr));
}

}  // namespace

WindowList::WindowList(const char* display) {
  int screenNumber = 0;
  connection_ = xcb_connect(display, &screenNumber);
  if (xcb_connection_has_error(connection_)) {
    connectionLost();
    return;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
  while (screenNumber-- > 0 && screens.rem > 1) xcb_screen_next(&screens);
  root_ = screens.data->root;
  atoms_ = std::make_unique<Atoms>(connection_);

  // Selects events before the first reading, so that no change is missed in between.
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
  readClientList();
  readActiveWindow();
  readCurrentDesktop();
  readSupported();

  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { readEvents(); });
  readEventsLater();
}

WindowList::~WindowList() {
  notifier_.reset();
  if (connection_) xcb_disconnect(connection_);
}

bool WindowList::canSeeWindows() const {
  return connection_ && !xcb_connection_has_error(connection_) && hasClientList_;
}

std::optional<DesktopWindow> WindowList::activeWindow() const {
  const auto found = std::find_if(windows_.begin(), windows_.end(),
                                  [this](const DesktopWindow& window) { return window.id == active_; });
  return found == windows_.end() ? std::nullopt : std::optional(*found);
}

void WindowList::connectionLost() {
  if (notifier_) notifier_->setEnabled(false);
  if (connection_) xcb_disconnect(connection_);
  connection_ = nullptr;
  windows_.clear();
  active_ = 0;
  hasClientList_ = false;
}

void WindowList::readEvents() {
  bool list = false, active = false, desktop = false, supported = false;
  const auto look = [&] {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
      if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) continue;
      const auto atom = reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom;
      list |= atom == atoms_->clientList;
      active |= atom == atoms_->activeWindow;
      desktop |= atom == atoms_->currentDesktop;
      supported |= atom == atoms_->supported;
    }
  };
  look();
  // Reading a property may have pulled further events into the queue, and the socket will not wake us for
  // these.
  while (list || active || desktop || supported) {
    if (std::exchange(list, false)) readClientList();
    if (std::exchange(active, false)) readActiveWindow();
    if (std::exchange(desktop, false)) readCurrentDesktop();
    if (std::exchange(supported, false)) readSupported();
    if (!connection_) return;
    look();
  }
  if (xcb_connection_has_error(connection_)) {
    connectionLost();
    if (handlers_.windowsChanged) handlers_.windowsChanged();
  }
}

// Sending a request or waiting for a reply may pull events into the queue, and the socket will not wake us
// for these.
void WindowList::readEventsLater() {
  const auto read = [this] {
    if (connection_) readEvents();
  };
  QMetaObject::invokeMethod(notifier_.get(), read, Qt::QueuedConnection);
}

void WindowList::readClientList() {
  const auto property = answer(connection_, ask(connection_, root_, atoms_->clientList));
  hasClientList_ = property && property->type != XCB_ATOM_NONE;
  const auto ids = words(property);

  std::vector<DesktopWindow> kept;
  std::vector<std::uint32_t> fresh;
  for (const auto id : ids) {
    const auto known =
        std::find_if(windows_.begin(), windows_.end(), [id](const auto& window) { return window.id == id; });
    if (known == windows_.end()) {
      fresh.push_back(id);
    } else {
      kept.push_back(std::move(*known));
    }
  }
  const bool changed = kept.size() != windows_.size() || !fresh.empty();
  windows_ = std::move(kept);
  for (auto& window : describe(fresh)) windows_.push_back(std::move(window));
  if (changed && handlers_.windowsChanged) handlers_.windowsChanged();
}

std::vector<DesktopWindow> WindowList::describe(const std::vector<std::uint32_t>& ids) {
  struct Questions {
    std::array<xcb_get_property_cookie_t, 8> properties;
    xcb_res_query_client_ids_cookie_t client;
  };
  std::vector<Questions> asked;
  for (const auto id : ids) {
    asked.push_back(
        {{ask(connection_, id, atoms_->pid), ask(connection_, id, atoms_->clientMachine),
          ask(connection_, id, XCB_ATOM_WM_CLASS), ask(connection_, id, atoms_->gtkApplicationID),
          ask(connection_, id, atoms_->kdeDesktopFile), ask(connection_, id, atoms_->windowType),
          ask(connection_, id, atoms_->gtkUniqueBusName), ask(connection_, id, atoms_->gtkObjectPath)},
         askForProcess(connection_, id)});
  }

  static const std::string thisMachine = hostName();
  std::vector<DesktopWindow> result;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    std::array<Property, 8> answers;
    for (std::size_t j = 0; j < answers.size(); ++j) answers[j] = answer(connection_, asked[i].properties[j]);
    const auto fromServer = processFrom(connection_, asked[i].client);

    DesktopWindow window;
    window.id = ids[i];
    const auto machine = text(answers[1]);
    const bool isOwnMachine =
        machine.empty() || thisMachine.empty() || machine == thisMachine || machine == "localhost";
    const auto claimed = static_cast<std::int32_t>(firstWord(answers[0]).value_or(0));
    window.pid = processBehind(fromServer, claimed, isOwnMachine);
    const auto classes = text(answers[2]);
    window.wmInstance = classes.substr(0, classes.find('\0'));
    if (classes.size() > window.wmInstance.size() + 1) {
      window.wmClass = std::string(classes.c_str() + window.wmInstance.size() + 1);
    }
    window.gtkApplicationID = text(answers[3]);
    window.kdeDesktopFile = text(answers[4]);
    window.gtkUniqueBusName = text(answers[6]);
    window.gtkApplicationObjectPath = text(answers[7]);
    const auto type = firstWord(answers[5]).value_or(XCB_ATOM_NONE);
    window.isNormal = type != atoms_->typeDock && type != atoms_->typeDesktop;
    result.push_back(std::move(window));
  }
  return result;
}

void WindowList::readActiveWindow() {
  const auto active =
      firstWord(answer(connection_, ask(connection_, root_, atoms_->activeWindow))).value_or(0);
  // Window managers may report a change of focus twice.
  if (active == std::exchange(active_, active)) return;
  if (handlers_.activeWindowChanged) handlers_.activeWindowChanged();
}

void WindowList::readCurrentDesktop() {
  const auto desktop =
      firstWord(answer(connection_, ask(connection_, root_, atoms_->currentDesktop))).value_or(0);
  if (desktop == std::exchange(currentDesktop_, desktop)) return;
  if (handlers_.workspaceChanged) handlers_.workspaceChanged();
}

std::optional<std::vector<std::int32_t>> WindowList::ownersOfVisibleWindows() {
  if (!canSeeWindows()) return std::vector<std::int32_t>();
  const auto showsDesktop = ask(connection_, root_, atoms_->showingDesktop);
  struct Questions {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_property_cookie_t state, desktop;
  };
  std::vector<Questions> asked;
  for (const auto& window : windows_) {
    asked.push_back({xcb_get_window_attributes(connection_, window.id),
                     ask(connection_, window.id, atoms_->state),
                     ask(connection_, window.id, atoms_->windowDesktop)});
  }
  const bool isShowingDesktop = firstWord(answer(connection_, showsDesktop)).value_or(0) != 0;
  std::vector<std::int32_t> owners;
  for (std::size_t i = 0; i < windows_.size(); ++i) {
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, asked[i].attributes, nullptr));
    const auto states = words(answer(connection_, asked[i].state));
    const auto desktop = firstWord(answer(connection_, asked[i].desktop)).value_or(everyDesktop);
    const auto is = [&states](xcb_atom_t state) { return std::ranges::find(states, state) != states.end(); };
    const bool isHere = desktop == everyDesktop || desktop == currentDesktop_;
    // Some window managers unmap a window that is rolled up; its title bar remains.
    const bool isShown =
        (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) || is(atoms_->stateShaded);
    if (windows_[i].isNormal && windows_[i].pid > 0 && isShown && !is(atoms_->stateHidden) && isHere) {
      owners.push_back(windows_[i].pid);
    }
  }
  readEventsLater();
  return isShowingDesktop ? std::nullopt : std::optional(std::move(owners));
}

void WindowList::readSupported() {
  const auto supported = words(answer(connection_, ask(connection_, root_, atoms_->supported)));
  managerClosesWindows_ = std::ranges::find(supported, atoms_->closeWindow) != supported.end();
}

void WindowList::requestClose(std::uint32_t window) {
  if (!connection_) return;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  const auto* bytes = reinterpret_cast<const char*>(&message);
  if (managerClosesWindows_) {
    message.type = atoms_->closeWindow;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] =
        2;  // the request comes from a pager or the like, not from the application itself
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, bytes);
  } else {
    message.type = atoms_->protocols;
    message.data.data32[0] = atoms_->deleteWindow;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT, bytes);
  }
  xcb_flush(connection_);
  readEventsLater();
}

}  // namespace vorli::linuxhost

#include "ui/linux/X11HotkeyGrab.h"

#include "linux/X11Reply.h"
#include "ports/GlobalHotkeys.h"
#include "ui/linux/X11Keyboard.h"

#include <QMetaObject>
#include <algorithm>
#include <array>
#include <utility>

namespace vorli::ui {

namespace {

// Time for other programs to move their own grabs to the new keys of a changed keyboard.
constexpr double othersFollowSeconds = 0.5;

// States of the lock keys in which the combination must work.
std::array<std::uint16_t, 4> lockStates(std::uint16_t numLock) {
  return {0, XCB_MOD_MASK_LOCK, numLock, static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | numLock)};
}

}  // namespace

X11HotkeyGrab::X11HotkeyGrab(Scheduler& scheduler, std::function<void()> pressed,
                             std::function<void(std::int32_t)> changed)
    : scheduler_(scheduler), pressed_(std::move(pressed)), changed_(std::move(changed)) {}

X11HotkeyGrab::~X11HotkeyGrab() {
  scheduler_.cancel(secondTry_);
  notifier_.reset();
  if (connection_) xcb_disconnect(connection_);
}

std::int32_t X11HotkeyGrab::grab(std::uint32_t keyCode, std::uint32_t modifiers) {
  release();
  if (!connection_ && !connect()) return ports::hotkeyUnavailable;
  wanted_ = {keyCode, modifiers};
  status_ = grabWanted();
  if (status_ != 0) wanted_.reset();
  // Events may have been read with the replies, and the notifier does not report those.
  QMetaObject::invokeMethod(
      notifier_.get(), [this] { process(); }, Qt::QueuedConnection);
  return status_;
}

void X11HotkeyGrab::release() {
  scheduler_.cancel(std::exchange(secondTry_, 0));
  wanted_.reset();
  if (connection_) ungrab();
}

bool X11HotkeyGrab::connect() {
  auto* const connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection)) {
    xcb_disconnect(connection);
    return false;
  }
  connection_ = connection;
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { process(); });
  return true;
}

std::int32_t X11HotkeyGrab::grabWanted() {
  const auto keyboard = X11Keyboard::read(connection_);
  if (!keyboard) return ports::hotkeyUnavailable;
  const auto keys = keyboard->keysFor(wanted_->keyCode);
  const auto modifiers = keyboard->modifiersFor(wanted_->modifiers);
  if (keys.empty() || !modifiers) return ports::hotkeyNotOnKeyboard;
  grabbedModifiers_ = *modifiers;
  ignoredModifiers_ = keyboard->numLock();
  for (const auto key : keys) {
    grabbed_.push_back(key);
    if (const auto status = grabKey(key, *modifiers); status != 0) {
      ungrab();
      return status;
    }
  }
  return 0;
}

std::int32_t X11HotkeyGrab::grabKey(xcb_keycode_t key, std::uint16_t modifiers) const {
  std::array<xcb_void_cookie_t, 4> cookies;
  std::ranges::transform(lockStates(ignoredModifiers_), cookies.begin(), [&](std::uint16_t locks) {
    constexpr std::uint8_t toThisClientAlone = 1;
    return xcb_grab_key_checked(connection_, toThisClientAlone, root_,
                                static_cast<std::uint16_t>(modifiers | locks), key, XCB_GRAB_MODE_ASYNC,
                                XCB_GRAB_MODE_ASYNC);
  });
  std::int32_t status = 0;
  for (const auto cookie : cookies) {
    const linuxhost::X11Reply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
    if (error) status = error->error_code;
  }
  return status;
}

void X11HotkeyGrab::ungrab() {
  for (const auto key : std::exchange(grabbed_, {})) {
    for (const auto locks : lockStates(ignoredModifiers_))
      xcb_ungrab_key(connection_, key, root_, static_cast<std::uint16_t>(grabbedModifiers_ | locks));
  }
  xcb_flush(connection_);
}

// Follows the keyboard once for all events: a change of layout sends several. Following it may pull further
// ones into the queue, and the notifier does not report those.
void X11HotkeyGrab::process() {
  while (readEvents()) followKeyboard();
  if (xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
}

// Returns whether the keyboard has changed.
bool X11HotkeyGrab::readEvents() {
  bool keyboardChanged = false;
  while (const linuxhost::X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    const auto type = event->response_type & 0x7F;
    if (type == XCB_KEY_PRESS) keyPressed(*reinterpret_cast<const xcb_key_press_event_t*>(event.get()));
    if (type == XCB_KEY_RELEASE)
      released_ = reinterpret_cast<const xcb_key_release_event_t*>(event.get())->time;
    if (type == XCB_MAPPING_NOTIFY) keyboardChanged = true;
  }
  return keyboardChanged && !xcb_connection_has_error(connection_);
}

// Ignores auto-repeat, which comes as pairs of a release and a press with the same time.
void X11HotkeyGrab::keyPressed(const xcb_key_press_event_t& press) {
  const bool isRepeat = press.time == released_;
  const bool isGrabbed = std::ranges::find(grabbed_, press.detail) != grabbed_.end();
  if (isGrabbed && !isRepeat) pressed_();
}

// Grabs the new keys after a change of the keyboard, because the server keeps the grabs of the old ones. If
// another program has a new key, it may be about to free it for the same reason, or the next change may.
void X11HotkeyGrab::followKeyboard() {
  scheduler_.cancel(std::exchange(secondTry_, 0));
  if (!wanted_) return;
  grabAgain();
  if (!wanted_ || status_ != XCB_ACCESS) return;
  secondTry_ = scheduler_.after(othersFollowSeconds, [this] {
    secondTry_ = 0;
    grabAgain();
    process();  // events may have been read with the replies
  });
}

void X11HotkeyGrab::grabAgain() {
  ungrab();
  const auto before = std::exchange(status_, grabWanted());
  if (status_ != before) changed_(status_);
}

}  // namespace vorli::ui

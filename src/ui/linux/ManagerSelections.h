#pragma once

#include "base/SubscriberList.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <array>
#include <cstdint>
#include <memory>
#include <string>

struct xcb_connection_t;

namespace vorli::ui {

/// Tracks the managers of the X11 tray, the desktop's settings and the compositing of the default screen, and
/// what they publish. Uses its own connection and only events. Without an X server, nothing is managed.
class ManagerSelections {
 public:
  enum class Selection { systemTray, settings, compositor };

  ManagerSelections();
  ~ManagerSelections();
  ManagerSelections(const ManagerSelections&) = delete;
  ManagerSelections& operator=(const ManagerSelections&) = delete;

  bool isManaged(Selection selection) const { return state(selection).owner != 0; }

  /// The bytes of _NET_SYSTEM_TRAY_COLORS (32-bit numbers) or _XSETTINGS_SETTINGS on the manager's window.
  /// Empty without a manager, when it publishes nothing, and for the compositor.
  const QByteArray& published(Selection selection) const { return state(selection).published; }

  /// `handler` runs after a manager has appeared, disappeared or published something else.
  Subscription subscribe(std::function<void()> handler) { return changed_.add(std::move(handler)); }

 private:
  struct State {
    std::uint32_t selection = 0;  // atoms and a window of the server
    std::uint32_t property = 0;
    std::uint32_t owner = 0;
    QByteArray published;
  };

  const State& state(Selection selection) const { return states_[static_cast<std::size_t>(selection)]; }
  bool watchOwners(std::uint32_t root);
  std::uint32_t intern(const std::string& name);
  std::uint32_t selectionOwner(const State& state);
  bool refresh(State& state);
  bool refreshAll();
  bool readEvents();
  void process();

  xcb_connection_t* connection_ = nullptr;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::uint8_t firstFixesEvent_ = 0;
  std::array<State, 3> states_;
  SubscriberList<> changed_;
};

}  // namespace vorli::ui

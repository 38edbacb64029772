#pragma once

#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "ports/GlobalHotkeys.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

/// Holds the program's one global key. Main thread.
class GlobalHotkeyManager {
 public:
  enum class State {
    none,         // no key is registered
    registered,   // a press runs the trigger
    notParsed,    // the combination cannot be read, or not typed on this keyboard
    refused,      // another program holds the key
    declined,     // the user or the desktop does not allow the key
    unavailable,  // the desktop has no global keys
  };

  GlobalHotkeyManager(Scheduler& scheduler, ports::GlobalHotkeys& hotkeys);
  ~GlobalHotkeyManager();
  GlobalHotkeyManager(const GlobalHotkeyManager&) = delete;
  GlobalHotkeyManager& operator=(const GlobalHotkeyManager&) = delete;

  /// Replaces any earlier registration, even if this one fails. `trigger` runs on the main loop after each
  /// press.
  void registerCombo(const std::string& combo, std::function<void()> trigger);
  void unregister();

  Published<State, GlobalHotkeyManager> state{State::none};

 private:
  struct Life {};

  void pressed();
  void registered();
  void statusChanged(std::int32_t status);
  void refused(std::int32_t status);

  Scheduler& scheduler_;
  ports::GlobalHotkeys& hotkeys_;
  std::string combo_;
  std::function<void()> trigger_;
  std::optional<Subscription> handlerRef_;
  std::optional<Subscription> hotKeyRef_;
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

}  // namespace vorli

#include "nudges/GlobalHotkeyManager.h"

#include "base/Logger.h"
#include "nudges/HotkeyCombo.h"

#include <utility>

namespace vorli {

namespace {

constexpr Logger hotkeyLog{logSubsystem, "hotkey"};
constexpr ports::HotkeyIdentifier identifier{.signature = 0x56524C49, .id = 1};  // 'VRLI'

GlobalHotkeyManager::State stateAfter(std::int32_t error) {
  using State = GlobalHotkeyManager::State;
  if (error == ports::hotkeyUnavailable) return State::unavailable;
  if (error == ports::hotkeyNotOnKeyboard) return State::notParsed;
  if (error == ports::hotkeyDeclined) return State::declined;
  return State::refused;
}

}  // namespace

GlobalHotkeyManager::GlobalHotkeyManager(Scheduler& scheduler, ports::GlobalHotkeys& hotkeys)
    : scheduler_(scheduler), hotkeys_(hotkeys) {
  hotkeys_.setStatusHandler([this](std::int32_t status) { statusChanged(status); });
}

GlobalHotkeyManager::~GlobalHotkeyManager() {
  hotkeys_.setStatusHandler(nullptr);
}

void GlobalHotkeyManager::registerCombo(const std::string& combo, std::function<void()> trigger) {
  unregister();
  const auto parsed = parseCombo(combo);
  if (!parsed) {
    hotkeyLog.log("hotkey parse failed for combo %{public}s", combo);
    state = State::notParsed;
    return;
  }
  combo_ = combo;
  trigger_ = std::move(trigger);
  handlerRef_ = hotkeys_.installEventHandler([this] { pressed(); });
  auto registration = hotkeys_.registerEventHotKey(parsed->keyCode, parsed->modifiers, identifier);
  if (!registration) {
    refused(registration.error());
    return;
  }
  hotKeyRef_ = std::move(*registration);
  registered();
}

void GlobalHotkeyManager::registered() {
  hotkeyLog.log("hotkey registered: %{public}s", combo_);
  state = State::registered;
}

void GlobalHotkeyManager::unregister() {
  hotKeyRef_.reset();
  handlerRef_.reset();
  trigger_ = nullptr;
  if (state.get() != State::none) state = State::none;
}

// Runs the trigger from the main loop, because it may register another key.
void GlobalHotkeyManager::pressed() {
  scheduler_.post([this, life = std::weak_ptr(life_)] {
    if (!life.lock() || !trigger_) return;
    const auto trigger = trigger_;
    trigger();
  });
}

// Keeps a registration that stopped working: it may work again after the next change of the keyboard.
void GlobalHotkeyManager::statusChanged(std::int32_t status) {
  if (status != 0) return refused(status);
  registered();
}

void GlobalHotkeyManager::refused(std::int32_t status) {
  hotkeyLog.error("RegisterEventHotKey failed (%d) for %{public}s", status, combo_);
  state = stateAfter(status);
}

}  // namespace vorli

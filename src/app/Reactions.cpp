#include "app/Reactions.h"

#include "base/AnyChange.h"

#include <utility>

namespace vorli {

template <typename T>
void Reactions::follow(const Observable<T>& source, std::function<void(const T&)> handler, Initial initial) {
  cancellables_.push_back(source.subscribeOnMainLoop(
      services_.host.scheduler,
      [skipsNext = initial == Initial::skip, handler = std::move(handler)](const T& value) mutable {
        if (!std::exchange(skipsNext, false)) handler(value);
      }));
}

void Reactions::followSamplesAndAppearance() {
  const auto& monitor = services_.systemMonitor;
  const auto redraw = [this] { actions_.updateStatusIcon(); };
  cancellables_.push_back(onAnyChange(
      services_.host.scheduler,
      [this] {
        actions_.updateStatusIcon();
        services_.nudgeNotifier.evaluate(services_.settings, services_.systemMonitor.ringProgress);
      },
      monitor.memory, monitor.thermal, monitor.cpu));
  cancellables_.push_back(
      services_.clearState.calmIntensity.subscribeToChanges(CalmPace::dial, [redraw](double) { redraw(); }));
  follow<OnboardingFlowState::Step>(
      services_.onboardingFlowState.step, [redraw](OnboardingFlowState::Step) { redraw(); }, Initial::skip);
  services_.host.statusItem.setAppearanceHandler(redraw);
  services_.popoverHost.observeContent();
}

void Reactions::followMemory() {
  follow<MemorySnapshot>(services_.systemMonitor.memory, [this](const MemorySnapshot& memory) {
    services_.quietPolish.checkPressure(memory);
  });
}

void Reactions::followSettings() {
  const auto& settings = services_.settings;
  follow<std::string>(settings.globalHotkeyCombo(),
                      [this](const std::string& combo) { actions_.registerHotkey(combo); });
  follow<std::string>(
      settings.dialPanel(), [this](const std::string&) { actions_.updateStatusIcon(); }, Initial::skip);
  follow<bool>(settings.edgeGlow(), [this](bool) { actions_.applyEdgeGlow(); });
  follow<bool>(
      settings.launchAtLogin(),
      [this](bool on) { services_.launchAtLogin.apply(on ? LoginItemWish::on : LoginItemWish::off); },
      Initial::skip);
  // A refusal switches the setting off again.
  follow<bool>(
      settings.gentleNudges(),
      [this](bool on) {
        if (on) services_.nudgeNotifier.requestAuthorization();
      },
      Initial::skip);
}

}  // namespace vorli

#pragma once

#include "base/Observable.h"

#include <functional>
#include <memory>
#include <utility>

namespace vorli {

/// Watches several observables at once: `handler` is posted to the main loop once for their current values,
/// then once for each change of any of them. It reads the values it needs itself. Ends with the token.
template <typename... Observables>
Subscription onAnyChange(Scheduler& scheduler, std::function<void()> handler,
                         const Observables&... observables) {
  auto shared = std::make_shared<std::function<void()>>(std::move(handler));
  const auto schedule = [&scheduler, weak = std::weak_ptr<std::function<void()>>(shared)](const auto&...) {
    scheduler.post([weak] {
      if (const auto alive = weak.lock()) (*alive)();
    });
  };
  auto subscriptions = std::make_tuple(observables.subscribeToChanges(schedule)...);
  schedule();
  return Subscription([subscriptions = std::move(subscriptions), shared = std::move(shared)]() mutable {
    std::apply([](auto&... each) { (each.cancel(), ...); }, subscriptions);
    shared.reset();
  });
}

}  // namespace vorli

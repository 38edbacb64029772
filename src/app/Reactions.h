#pragma once

#include "app/Services.h"

#include <functional>
#include <string>
#include <vector>

namespace vorli {

/// The table of what follows from samples, appearance and settings, each in a turn of the main loop of its
/// own. Main thread.
class Reactions {
 public:
  /// Functions of the program that the reactions call.
  struct Actions {
    std::function<void()> updateStatusIcon;
    std::function<void()> applyEdgeGlow;
    std::function<void(const std::string&)> registerHotkey;
  };

  Reactions(Services& services, Actions actions) : services_(services), actions_(std::move(actions)) {}

  void followSamplesAndAppearance();
  void followMemory();
  void followSettings();

  /// Ends the reactions, except those to the appearance and to the popover's content.
  void drop() { cancellables_.clear(); }

 private:
  enum class Initial { deliver, skip };

  /// Calls `handler` with each new value of `source`, and with the present one unless it is to be skipped.
  template <typename T>
  void follow(const Observable<T>& source, std::function<void(const T&)> handler,
              Initial initial = Initial::deliver);

  Services& services_;
  const Actions actions_;
  std::vector<Subscription> cancellables_;
};

}  // namespace vorli

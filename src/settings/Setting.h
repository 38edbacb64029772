#pragma once

#include "base/Published.h"
#include "settings/UserDefaults.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

namespace vorli {

/// One preference: its key, its default, its observable value and the store that keeps it. Loaded once, at
/// construction; a change made by another process is not noticed. A stored whole number below 1 counts as
/// absent. Main thread.
template <typename T>
class Setting {
 public:
  Setting(ports::KeyValueStore& store, std::string key, T fallback)
      : store_(store), key_(std::move(key)), value_(load(std::move(fallback))) {}

  const Observable<T>& operator()() const { return value_; }

  /// Notifies the observers first, then writes the value that the property has after that.
  void set(T value) {
    value_ = std::move(value);
    store_.setObject(key_, value_.get());
  }

 private:
  T load(T fallback) const {
    if constexpr (std::is_same_v<T, bool>) {
      return store_.object(key_) ? boolForKey(store_, key_) : fallback;
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
      const auto number = integerForKey(store_, key_);
      return number > 0 ? number : fallback;
    } else {
      return stringForKey(store_, key_).value_or(std::move(fallback));
    }
  }

  ports::KeyValueStore& store_;
  const std::string key_;
  Published<T, Setting> value_;
};

}  // namespace vorli

#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace vorli::macfake {

/// The functions that reset each part of the fake system.
inline std::vector<std::function<void()>>& resets() {
  static std::vector<std::function<void()>> all;
  return all;
}

/// The state of one part of the fake system. Each test finds it new.
template <typename T>
class State {
 public:
  State() : value_(std::make_unique<T>()) {
    resets().push_back([this] { value_ = std::make_unique<T>(); });
  }

  T& operator*() { return *value_; }
  T* operator->() { return value_.get(); }

 private:
  std::unique_ptr<T> value_;
};

}  // namespace vorli::macfake

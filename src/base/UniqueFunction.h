#pragma once

#include "base/Assert.h"

#include <memory>
#include <type_traits>
#include <utility>

namespace vorli {

template <typename Signature>
class UniqueFunction;

/// A move-only callable, which may own move-only captures. Empty after a move; calling an empty one is a
/// programming error. (std::move_only_function is missing from one of the two libraries we build on.)
template <typename R, typename... Args>
class UniqueFunction<R(Args...)> {
 public:
  UniqueFunction() = default;
  UniqueFunction(std::nullptr_t) {}

  template <typename F>
  requires(!std::is_same_v<std::decay_t<F>, UniqueFunction> &&
           std::is_invocable_r_v<R, std::decay_t<F>&, Args...>) UniqueFunction(F&& callable)
      : target_(std::make_unique<Target<std::decay_t<F>>>(std::forward<F>(callable))) {}

  UniqueFunction(UniqueFunction&&) noexcept = default;
  UniqueFunction& operator=(UniqueFunction&&) noexcept = default;

  explicit operator bool() const { return target_ != nullptr; }

  R operator()(Args... args) {
    VORLI_ASSERT(target_);
    return target_->call(std::forward<Args>(args)...);
  }

 private:
  struct Callable {
    virtual ~Callable() = default;
    virtual R call(Args... args) = 0;
  };

  template <typename F>
  struct Target final : Callable {
    template <typename G>
    explicit Target(G&& g) : callable(std::forward<G>(g)) {}
    R call(Args... args) override { return callable(std::forward<Args>(args)...); }
    F callable;
  };

  std::unique_ptr<Callable> target_;
};

}  // namespace vorli

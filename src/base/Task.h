#pragma once

#include "base/Assert.h"
#include "base/TaskContext.h"

#include <coroutine>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace vorli {

template <typename T>
class Task;

namespace detail {

struct TaskPromiseBase {
  TaskContext* context = nullptr;
  std::coroutine_handle<> continuation;

  struct InitialAwaiter {
    TaskPromiseBase* promise;

    bool await_ready() noexcept { return false; }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> started) noexcept {
      const bool awaitsOutsideOfConditionsOnly = &started.promise() == promise;
      VORLI_ASSERT(awaitsOutsideOfConditionsOnly);
    }
    void await_resume() noexcept {}
  };

  struct FinalAwaiter {
    bool await_ready() noexcept { return false; }
    template <typename Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> finished) noexcept {
      auto& promise = finished.promise();
      if (promise.continuation) return promise.continuation;
      promise.context->rootFinished();
      return std::noop_coroutine();
    }
    void await_resume() noexcept {}
  };

  InitialAwaiter initial_suspend() noexcept { return {this}; }
  FinalAwaiter final_suspend() noexcept { return {}; }
  [[noreturn]] void unhandled_exception() noexcept { std::abort(); }
};

template <typename T>
struct TaskPromise : TaskPromiseBase {
  std::optional<T> value;

  Task<T> get_return_object();
  template <typename U>
  void return_value(U&& result) {
    value.emplace(std::forward<U>(result));
  }
  T take() { return std::move(*value); }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
  Task<void> get_return_object();
  void return_void() {}
  void take() {}
};

}  // namespace detail

/// A coroutine on the main thread, called a flow. It does nothing until another flow awaits it or a TaskScope
/// spawns it; destroying it destroys everything that it holds. A flow must be a member or free function with
/// parameters by value, never a capturing lambda. Do not write a lambda on a co_await line either: GCC 12
/// destroys its captures twice. Do not use `co_await` in the condition of an if, while or switch: GCC 12 then
/// puts the condition before the promise in the frame, and every handle made from the promise is off by 8
/// bytes. Write `const bool done = co_await isCancelled();` first.
template <typename T = void>
class [[nodiscard]] Task {
 public:
  using promise_type = detail::TaskPromise<T>;

  Task() = default;
  explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
  ~Task() { destroy(); }

  Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
  Task& operator=(Task&& other) noexcept {
    if (this != &other) {
      destroy();
      handle_ = std::exchange(other.handle_, {});
    }
    return *this;
  }

  class Awaiter {
   public:
    explicit Awaiter(std::coroutine_handle<promise_type> child) : child_(child) {}
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> parent) noexcept {
      child_.promise().context = parent.promise().context;
      child_.promise().continuation = parent;
      return child_;
    }
    T await_resume() { return child_.promise().take(); }

   private:
    std::coroutine_handle<promise_type> child_;
  };

  Awaiter operator co_await() && noexcept {
    VORLI_ASSERT(handle_);
    return Awaiter(handle_);
  }

 private:
  friend class TaskScope;

  void destroy() {
    if (auto handle = std::exchange(handle_, {})) handle.destroy();
  }

  std::coroutine_handle<promise_type> handle_;
};

namespace detail {
template <typename T>
Task<T> TaskPromise<T>::get_return_object() {
  return Task<T>(std::coroutine_handle<TaskPromise<T>>::from_promise(*this));
}
inline Task<void> TaskPromise<void>::get_return_object() {
  return Task<void>(std::coroutine_handle<TaskPromise<void>>::from_promise(*this));
}
}  // namespace detail

/// Resumes a suspended flow; held by whatever will wake it. Move-only, so the flow is resumed at most once.
/// Dropping it unused abandons the wait: the flow is destroyed unless something else holds it. Main thread.
class Resumption {
 public:
  Resumption() = default;
  template <typename Promise>
  explicit Resumption(std::coroutine_handle<Promise> handle)
      : context_(handle.promise().context->shared_from_this()), handle_(handle) {}

  Resumption(Resumption&&) noexcept = default;
  Resumption& operator=(Resumption&&) noexcept = default;

  explicit operator bool() const { return context_ != nullptr; }

  void resume() {
    if (auto context = std::exchange(context_, nullptr)) context->resume(std::exchange(handle_, {}));
  }

 private:
  std::shared_ptr<TaskContext> context_;
  std::coroutine_handle<> handle_;
};

}  // namespace vorli

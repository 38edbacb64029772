#include "linux/helper/HelperChannel.h"

#include <utility>

namespace vorli::linuxhost {

void HelperChannel::setInvalidationHandler(std::function<void()> handler) {
  const std::lock_guard guard(lock_);
  invalidated_ = std::move(handler);
}

void HelperChannel::setInterruptionHandler(std::function<void()> handler) {
  const std::lock_guard guard(lock_);
  interrupted_ = std::move(handler);
}

bool HelperChannel::isClosed() const {
  const std::lock_guard guard(lock_);
  return isClosed_;
}

HelperChannel::RequestId HelperChannel::begin(ErrorHandler errorHandler) {
  const std::lock_guard guard(lock_);
  isInterrupted_ = false;
  out_.emplace(++lastRequest_, std::move(errorHandler));
  return lastRequest_;
}

bool HelperChannel::finish(RequestId request) {
  const std::lock_guard guard(lock_);
  return out_.erase(request) > 0;
}

void HelperChannel::fail(RequestId request, const std::string& description, Cause cause) {
  const std::lock_guard guard(lock_);
  auto node = out_.extract(request);
  if (!node) return;
  std::function<void()> interrupted;
  if (cause == Cause::daemonDied && !std::exchange(isInterrupted_, true)) interrupted = interrupted_;
  scheduler_.post([failed = std::move(node.mapped()), interrupted = std::move(interrupted), description] {
    if (failed) failed(description);
    if (interrupted) interrupted();
  });
}

void HelperChannel::close(std::string description) {
  const std::lock_guard guard(lock_);
  if (std::exchange(isClosed_, true)) return;
  scheduler_.post([out = std::exchange(out_, {}), invalidated = std::move(invalidated_),
                   description = std::move(description)] {
    for (const auto& [request, handler] : out) {
      if (handler) handler(description);
    }
    if (invalidated) invalidated();
  });
}

}  // namespace vorli::linuxhost

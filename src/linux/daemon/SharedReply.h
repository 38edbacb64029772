#pragma once

#include "base/OnceReply.h"

#include <memory>
#include <utility>

namespace vorli::linuxhost {

/// Makes a OnceReply copyable, because the bus library copies callbacks.
template <typename T>
class SharedReply {
 public:
  explicit SharedReply(OnceReply<T> reply) : reply_(std::make_shared<OnceReply<T>>(std::move(reply))) {}

  void operator()(T value) const { std::move (*reply_)(std::move(value)); }

 private:
  std::shared_ptr<OnceReply<T>> reply_;
};

}  // namespace vorli::linuxhost
